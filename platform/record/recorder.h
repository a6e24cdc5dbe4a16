#pragma once

#include <memory>
#include <vector>

#include "platform/ports/system.h"
#include "platform/record/change.h"
#include "platform/record/seen_process.h"

namespace record {

/// A system that notes what is changed through it. Every call goes to the inner system and gives the inner answer and
/// last error. Before a thing is changed for the first time the recorder looks at it through the inner system, and when
/// it is asked it looks again: so a deletion that the system only booked, or a file put back, shows as it really ended.
/// Any thread. The inner system must outlive the recorder.
class Recorder {
 public:
  explicit Recorder(const ports::System& inner);
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  [[nodiscard]] const ports::System& system() const;

  /// The net difference, sorted by kind and path.
  [[nodiscard]] std::vector<Change> changes() const;
  /// In the order in which they were done.
  [[nodiscard]] std::vector<Action> actions() const;
  /// In the order in which they were done, without those that were booked.
  [[nodiscard]] std::vector<Move> moves() const;
  /// One for each thing, in the order of the first attempts.
  [[nodiscard]] std::vector<Deletion> deletions() const;
  /// The files that the run's log lies in, and older logs in the common data folder that were to be deleted: what was
  /// opened through the log's streams, and what has such a file's name. By path.
  [[nodiscard]] std::vector<LogFile> logs() const;
  /// Other processes that were to be closed or were looked at for it, in the order in which they were first met.
  [[nodiscard]] std::vector<SeenProcess> processes() const;

  /// While one lives, what its thread does goes unnoted: the host's own work.
  class Pause {
   public:
    explicit Pause(Recorder& recorder);
    ~Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

   private:
    Recorder& recorder_;
  };

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace record
