#include "diagnostics/crash_filter.h"

#include <cstdint>
#include <memory>
#include <string>

#include "platform/ports/codes.h"
#include "platform/ports/environment.h"
#include "platform/ports/files.h"
#include "platform/ports/modules.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace diagnostics {

namespace {

constexpr std::int32_t execute_handler = 1;
constexpr std::size_t path_room = 260;
constexpr std::uint32_t all_access = 0x1F01FF;

class DumpThread final : public ports::ThreadBody {
 public:
  explicit DumpThread(ports::ExceptionPointers* exception) : exception_(exception) {}
  void run() override { write_dumps(exception_); }

 private:
  ports::ExceptionPointers* exception_;
};

class DumpFilter final : public ports::CrashFilter {
 public:
  // A thread of its own sees the faulting stack from outside, and works where that one is used up.
  std::int32_t on_crash(ports::ExceptionPointers* exception) override {
    const ports::System& system = ports::system();
    std::uint32_t id = 0;
    const ports::Handle thread = system.threads.start(std::make_unique<DumpThread>(exception), id);
    if (thread == ports::Handle::null) return execute_handler;
    static_cast<void>(system.waits.wait({&thread, 1}, false, ports::infinite));
    system.waits.close(thread);
    return execute_handler;
  }
};

constinit DumpFilter filter;

/// "Dumps" in `parent`, made where it is missing. `made` tells whether it is there.
std::wstring dumps_in(const std::wstring& parent, bool& made) {
  std::wstring folder = parent + L"\\Dumps";
  const ports::System& system = ports::system();
  // A path of that length ends the search for a place: a fault in here would call the filter again, and again.
  made = folder.size() < path_room &&
         (system.files.create_folder(folder.c_str()) || system.errors.last() == ports::code::already_exists);
  return folder;
}

std::wstring dump_folder() {
  const ports::System& system = ports::system();
  const std::wstring program = system.modules.file_name(system.modules.main());
  bool made = false;
  std::wstring folder = dumps_in(program.substr(0, program.rfind(L'\\')), made);
  if (made) return folder;
  const std::wstring profile = system.environment.folder(ports::KnownFolder::all_users_profile);
  return dumps_in(profile.empty() ? folder : profile, made);
}

void write_dump(const std::wstring& path, ports::DumpKind kind, ports::ExceptionPointers* exception) {
  const ports::System& system = ports::system();
  const ports::Handle file =
      system.files.open(path.c_str(), all_access, ports::file_share::none, ports::Disposition::create_always, 0);
  if (file == ports::Handle::invalid) return;
  static_cast<void>(system.crashes.write_dump(file, kind, exception));
  system.waits.close(file);
}

}  // namespace

ports::CrashFilter& dump_filter() {
  return filter;
}

void write_dumps(ports::ExceptionPointers* exception) {
  ports::Files& files = ports::system().files;
  wchar_t made[path_room] = {};
  // Without a number there is no name, and the rest fails.
  static_cast<void>(files.temp_file(dump_folder().c_str(), L"ky_", 0, made));
  std::wstring path = made;
  files.remove(path.c_str());
  if (path.size() > 3) path[path.size() - 3] = L'd';
  write_dump(path, ports::DumpKind::full_memory, exception);
  // The first of the whole path, deliberately: support's tools look for the pair by this rule. Where a folder's name
  // has one, the second dump goes astray.
  if (const std::size_t at = path.find(L'_'); at != std::wstring::npos) path[at] = L'm';
  files.remove(path.c_str());
  write_dump(path, ports::DumpKind::normal, exception);
}

}  // namespace diagnostics
