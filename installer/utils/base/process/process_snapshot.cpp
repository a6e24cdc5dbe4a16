#include "installer/utils/base/process/process_snapshot.h"

#include <exception>
#include <string_view>
#include <utility>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/inspection.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace base::process {

namespace {

void take(ports::ProcessRow& row, ProcessEntry& into) {
  into.name = std::move(row.name);
  into.pid = row.id;
  into.parentPid = row.parent_id;
}

}  // namespace

ProcessSnapshot::ProcessSnapshot() : handle_(ports::system().inspection.snapshot()) {
  if (handle_ == ports::Handle::invalid) winapi::raise_last_error("CreateToolhelp32Snapshot has failed!");
}

ProcessSnapshot::~ProcessSnapshot() {
  (void)ports::system().waits.close(handle_);
}

void ProcessSnapshot::begin() {
  ports::ProcessRow row;
  if (ports::system().inspection.first(handle_, row)) take(row, current_);
}

void ProcessSnapshot::next() {
  ports::ProcessRow row;
  if (ports::system().inspection.next(handle_, row)) {
    take(row, current_);
  } else {
    current_ = ProcessEntry{};
  }
}

std::uint32_t FindProcessIdByPrefix(const wchar_t* name) noexcept {
  if (name == nullptr) return 0;
  try {
    const std::wstring_view prefix(name);
    ProcessSnapshot snapshot;
    for (snapshot.begin(); !snapshot.at_end(); snapshot.next()) {
      if (snapshot.current().name.starts_with(prefix)) return snapshot.current().pid;
    }
  } catch (const std::exception&) {
    // Callers cannot tell a failed look from a program that does not run, and are not meant to.
  }
  return 0;
}

}  // namespace base::process
