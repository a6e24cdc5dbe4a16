#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace diagnostics {

/// What the names of a run's log files are made of.
struct LogRun {
  std::wstring_view label{};  // may be empty, otherwise it ends in a dot
  std::uint64_t start = 0;    // seconds since 1970
  bool sealed = false;
};

/// The names of a thread's file and of the merged one. A name of `log_format::name_room` characters or more stops the
/// process. The tag of the merged name stands behind the label; without a label there is none.
[[nodiscard]] std::wstring thread_file_name(const LogRun& run, std::uint32_t thread);
[[nodiscard]] std::wstring merged_file_name(const LogRun& run, std::wstring_view tag);

/// Where a log file of that name lies: in the common application data folder. Empty where there is no such folder or
/// the path is too long.
[[nodiscard]] std::wstring log_path(const std::wstring& name);

}  // namespace diagnostics
