#pragma once

#include <atomic>

#include "platform/ports/crashes.h"
#include "platform/ports/termination.h"

namespace machine {

class Files;

/// The process's handlers for faults. What stops through the machine's door as a fault is shown to the filter; a dump
/// is a minidump whose one stream is a comment that holds the reason.
class Crashes final : public ports::Crashes {
 public:
  explicit Crashes(Files& files) : files_(files) {}

  bool set_filter(ports::CrashFilter& filter) override { return filter_.exchange(&filter) != nullptr; }
  bool set_invalid_parameter_handler() override { return handled_.exchange(true); }
  bool write_dump(ports::Handle file, ports::DumpKind kind, ports::ExceptionPointers* exception) override;

  /// Runs the filter on the calling thread where `reason` is a fault; a fault within it finds none. Stops that no
  /// process knows, as a rehearsal's limit on steps, are none.
  void fault(const ports::StopReason& reason);

 private:
  Files& files_;
  std::atomic<ports::CrashFilter*> filter_{nullptr};
  std::atomic<bool> handled_{false};
};

}  // namespace machine
