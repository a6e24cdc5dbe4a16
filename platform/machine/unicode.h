#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Between UTF-8 and UTF-16 units, as the system does it.
namespace machine {

/// Each maximal ill-formed piece becomes one U+FFFD.
[[nodiscard]] std::wstring utf16_from(std::string_view utf8);

/// A surrogate without its partner becomes U+FFFD.
[[nodiscard]] std::string utf8_from(std::wstring_view units);

/// Where the first byte stands that is not well-formed UTF-8; nothing when all is.
[[nodiscard]] std::optional<std::size_t> first_ill_formed(std::string_view utf8);

/// True when every surrogate has its partner.
[[nodiscard]] bool well_formed(std::wstring_view units);

}  // namespace machine
