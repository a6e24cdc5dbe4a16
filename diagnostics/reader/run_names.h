#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace diagnostics::reader {

/// What the name of a log file tells: [label]TIME.THREAD[.v2].bin, or [label][tag]TIME.kyinstall[.v2].bin.
struct LogName {
  std::string stem;        // all before the thread or "kyinstall"
  std::string start_time;  // the digits that end the stem; with a tag that ends in digits, these too
  std::optional<std::uint32_t> thread;
  bool sealed = false;

  [[nodiscard]] bool merged() const { return !thread.has_value(); }
};

/// Nothing where the name is not a log's.
[[nodiscard]] std::optional<LogName> parse_log_name(std::string_view name);

/// True for two files of one run, as far as their names tell.
[[nodiscard]] bool same_run(const LogName& a, const LogName& b);

/// For order: runs by start time, and a run's thread files by thread, its merged file first.
[[nodiscard]] bool reads_before(const LogName& a, const LogName& b);

}  // namespace diagnostics::reader
