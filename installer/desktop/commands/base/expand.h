#pragma once

#include <cstdint>
#include <string>

namespace ky {

/// Replaces each "[Name]" by the text under `String_Name`, which may hold such forms itself. Gives 0, or 31 where a
/// name is undefined; `out` is then untouched. Both may be the same string.
[[nodiscard]] std::uint32_t ExpandVariables(const std::wstring& in, std::wstring& out);

/// The same into a new heap string, `*out`, which the caller frees with delete[]. Gives 1; on failure, or when an
/// argument is null, 0, and `*out` is left alone.
[[nodiscard]] std::int32_t ExpandToNew(const wchar_t* in, wchar_t** out);

}  // namespace ky
