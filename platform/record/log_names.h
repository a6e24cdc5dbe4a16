#pragma once

#include <string_view>

namespace record {

/// True for a name that a run gives to a file of its log: "[label.]TIME.THREAD[.v2].bin" or
/// "[label.][tag]TIME.kyinstall[.v2].bin", where TIME and THREAD are digits.
[[nodiscard]] bool is_log_name(std::wstring_view name);

}  // namespace record
