#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace native {

/// A document's bytes as UTF-8 without byte order mark: by its mark, or else by the encoding that it declares (UTF-8
/// where it declares none). Nothing where that is none of UTF-8, US-ASCII, UTF-16, ISO-8859-1 and windows-1252, or
/// where UTF-16 is ill-formed. Bytes that are to be UTF-8 are not checked.
[[nodiscard]] std::optional<std::string> document_to_utf8(std::string_view bytes);

}  // namespace native
