#pragma once

#include <cstdint>
#include <string_view>

/// The documents of this edition, as they are embedded in the library's resources. The machine of a rehearsal gets its
/// resources from here; the real world from the module.
namespace edition {

/// Numbers of the documents, of resource type "XML".
inline constexpr std::uint16_t script_id = 20003;
inline constexpr std::uint16_t configuration_id = 20005;
inline constexpr wchar_t document_type[] = L"XML";

/// The enciphered script and the plain configuration document, byte for byte.
[[nodiscard]] std::string_view script();
[[nodiscard]] std::string_view configuration();

}  // namespace edition
