#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace ky {

/// The parameters of a command line that scripts may know. Those that end in "=" or ":" have a
/// value, the others are flags. Both sets are sorted by code unit.
struct KnownParameters {
  std::set<std::wstring> flags;
  std::set<std::wstring> values;
};

/// Splits a list at each space. What is empty between two spaces is a flag, found in every line.
[[nodiscard]] KnownParameters SplitKnownParameters(std::wstring_view list);

/// What of `line` is known, in a canonical order: the flags that stand anywhere in it, sorted, then for each parameter
/// with a value, sorted, its first place in the line and the text behind that: up to the closing quote where it begins
/// with a quote, otherwise up to the next space. A quoted value is followed by nothing, so that the next parameter
/// stands right behind it; one without a closing quote is dropped with its name. A value that ends with the line gets a
/// space before what follows it. There is no white space at either end.
[[nodiscard]] std::wstring SanitizeCommandLine(std::wstring_view line, const KnownParameters& known);

/// The text behind the first "/pixel_url=" up to the next space, quotes or not; nothing where that is not there.
[[nodiscard]] std::optional<std::wstring_view> PixelUrlOf(std::wstring_view line);

}  // namespace ky
