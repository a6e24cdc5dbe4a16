#pragma once

#include "platform/ports/processes.h"
#include "platform/ports/threads.h"
#include "platform/record/ledger.h"
#include "platform/record/process_book.h"

namespace record {

/// Processes whose starts and ends go into the ledger.
class RecordingProcesses final : public ports::Processes {
 public:
  RecordingProcesses(const ports::System& inner, Ledger& ledger, ProcessBook& book)
      : inner_(inner.processes), errors_(inner.errors), ledger_(ledger), book_(book) {}

  bool create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
              ports::CreatedProcess& out) override;
  bool terminate(ports::Handle process, std::uint32_t exit_code) override;
  bool shell_execute(const ports::ShellRequest& request, ports::Handle& process) override;
  ports::Result execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file, const wchar_t* arguments,
                                   const wchar_t* directory, const wchar_t* operation) override;

  bool exit_code(ports::Handle process, std::uint32_t& out) override { return inner_.exit_code(process, out); }
  std::uint32_t current_id() override { return inner_.current_id(); }
  ports::Result find_desktop(ports::DesktopShell& out) override { return inner_.find_desktop(out); }
  void release_desktop(ports::DesktopShell desktop) override { inner_.release_desktop(desktop); }

 private:
  ports::Processes& inner_;
  ports::Errors& errors_;
  Ledger& ledger_;
  ProcessBook& book_;
};

/// Waits that note which processes are waited for, and forget a handle when it is closed.
class RecordingWaits final : public ports::Waits {
 public:
  RecordingWaits(const ports::System& inner, Ledger& ledger, ProcessBook& book)
      : inner_(inner.waits), ledger_(ledger), book_(book) {}

  bool close(ports::Handle handle) override;

  ports::Handle create_event(bool manual_reset, bool initial_state, const wchar_t* name) override {
    return inner_.create_event(manual_reset, initial_state, name);
  }
  bool set(ports::Handle event) override { return inner_.set(event); }
  bool reset(ports::Handle event) override { return inner_.reset(event); }
  std::uint32_t wait(std::span<const ports::Handle> handles, bool all, std::uint32_t milliseconds) override {
    book_.waiting(handles);
    return inner_.wait(handles, all, milliseconds);
  }

 private:
  ports::Waits& inner_;
  Ledger& ledger_;
  ProcessBook& book_;
};

}  // namespace record
