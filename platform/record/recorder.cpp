#include "platform/record/recorder.h"

#include "platform/record/ledger.h"
#include "platform/record/process_book.h"
#include "platform/record/recording_drivers.h"
#include "platform/record/recording_files.h"
#include "platform/record/recording_inspection.h"
#include "platform/record/recording_log_streams.h"
#include "platform/record/recording_processes.h"
#include "platform/record/recording_registry.h"
#include "platform/record/recording_tasks.h"

namespace record {

struct Recorder::Parts {
  explicit Parts(const ports::System& system)
      : inner(system),
        ledger(inner),
        book(inner),
        waits(inner, ledger, book),
        files(inner, ledger),
        log_streams(inner, ledger),
        registry(inner, ledger),
        processes(inner, ledger, book),
        inspection(inner, ledger, book),
        tasks(inner, ledger),
        drivers(inner, ledger),
        outer(ports::with(inner, waits, files, log_streams, registry, processes, inspection, tasks, drivers)) {}

  const ports::System inner;
  Ledger ledger;
  ProcessBook book;
  RecordingWaits waits;
  RecordingFiles files;
  RecordingLogStreams log_streams;
  RecordingRegistry registry;
  RecordingProcesses processes;
  RecordingInspection inspection;
  RecordingTasks tasks;
  RecordingDrivers drivers;
  ports::System outer;
};

Recorder::Recorder(const ports::System& inner) : parts_(std::make_unique<Parts>(inner)) {}

Recorder::~Recorder() = default;

const ports::System& Recorder::system() const {
  return parts_->outer;
}

std::vector<Change> Recorder::changes() const {
  return parts_->ledger.changes();
}

std::vector<Action> Recorder::actions() const {
  return parts_->ledger.actions();
}

std::vector<Move> Recorder::moves() const {
  return parts_->ledger.moves();
}

std::vector<Deletion> Recorder::deletions() const {
  return parts_->ledger.deletions();
}

std::vector<LogFile> Recorder::logs() const {
  return parts_->ledger.logs();
}

std::vector<SeenProcess> Recorder::processes() const {
  return parts_->book.seen();
}

Recorder::Pause::Pause(Recorder& recorder) : recorder_(recorder) {
  recorder_.parts_->ledger.pause();
}

Recorder::Pause::~Pause() {
  recorder_.parts_->ledger.resume();
}

}  // namespace record
