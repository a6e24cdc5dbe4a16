#pragma once

namespace base::fs {

/// True where both paths have the same length in code units and name one file of one volume. The length comes first and
/// rules out spellings of another length, as those by a short name or a substituted drive mostly are: deliberately this
/// strict. Links on the way are followed. Any failure is false.
[[nodiscard]] bool SameFile(const wchar_t* candidate, const wchar_t* path);

}  // namespace base::fs
