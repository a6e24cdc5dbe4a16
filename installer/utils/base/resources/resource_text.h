#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ky::res {

/// What lies between the first "<" and the last ">" of a document's bytes, both included: a byte order mark in front
/// and stray bytes behind are dropped. Nothing where there is no such stretch.
[[nodiscard]] std::optional<std::string_view> document_part(std::string_view bytes);

/// The text of resource `id` of type "XML" in this system's own module, or nothing: where it is missing, holds no
/// document, or does not convert from UTF-8.
[[nodiscard]] std::optional<std::wstring> ReadResourceText(std::uint16_t id);

/// The bytes of the same resource, whole. They live as long as the module. Raises a Windows error when it is missing.
[[nodiscard]] std::string_view resource_bytes(std::uint16_t id);

}  // namespace ky::res
