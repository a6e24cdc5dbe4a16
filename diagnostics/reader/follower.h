#pragma once

#include <map>
#include <memory>
#include <string>

#include "diagnostics/reader/log_file.h"
#include "diagnostics/reader/timeline.h"

namespace diagnostics::reader {

/// Reads a run that is in progress: its thread files grow, and new ones appear. Each call gives what has come since the
/// last one as a timeline; beyond that, records come as they were written.
class Follower {
 public:
  /// Any file of the run, or a folder, whose newest run it is then. `settings` and `sink` outlive the object.
  Follower(const std::string& path, const Settings& settings, RecordSink& sink);

  /// False once the run has ended and all of it is read: its merged file has come and its thread files are gone, or
  /// have not changed any more for `patience` calls.
  [[nodiscard]] bool poll();

  static constexpr int patience = 20;

 private:
  struct Followed {
    std::unique_ptr<LogFile> file;
    std::unique_ptr<ThreadLog> log;  // null until the file can be read
    bool given_up = false;
  };

  void look();
  void add(const std::string& path, const LogName& name);
  [[nodiscard]] bool begin(Followed& followed);
  void read_rest();
  [[nodiscard]] bool read_grown(End what);

  const Settings& settings_;
  RecordSink& sink_;
  std::string folder_;
  std::optional<LogName> run_;
  std::map<std::uint32_t, Followed> threads_;
  std::string merged_;  // empty until it is there
  bool threads_on_disk_ = false;
  int idle_ = 0;
};

}  // namespace diagnostics::reader
