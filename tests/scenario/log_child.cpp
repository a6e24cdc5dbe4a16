// The program that logs in the real world until it is ended:
//   write LABEL MEMORY   two threads write records and tell in the shared memory how many
//   crash LABEL FAULT    the commands CrashHandler and Logger, a record, and then a fault
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "diagnostics/logger_api.h"
#include "host/session.h"
#include "installer/desktop/commands/base/trace.h"
#include "installer/desktop/module/library.h"
#include "platform/ports/build.h"
#include "platform/ports/threads.h"
#include "tests/scenario/log_progress.h"
#include "tests/support/script_text.h"

namespace scenario {
namespace {

const ports::System& real() {
  return *ports::real_system(ports::Module::null);
}

std::wstring widened(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

int write_until_ended(const std::string& label, const std::string& memory) {
  const SharedLogProgress shared(widened(memory));
  LogProgress& progress = *shared;
  ports::bind(real());
  std::unique_ptr<ky::CLoggerApi, ky::Releaser> log(new ky::CLoggerApi);
  if (!log->SetupEncryption(L"AES", 256)) return 3;
  log->SetLabel(widened(label) + L".");
  const auto write = [&](LogProgress::Lane& lane) {
    lane.thread = real().threads.current_id();
    progress.began = true;
    log->StartThreadLog(nullptr, false);
    for (std::uint32_t n = 0;; ++n) {
      log->WriteLine(log_message(n).c_str());
      lane.written = n + 1;
    }
  };
  std::thread other([&] { write(progress.lanes[1]); });
  write(progress.lanes[0]);
  return 4;
}

[[noreturn]] void fault(const std::string& kind) {
  if (kind == "AccessViolation") {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
  }
  if (kind == "InvalidParameter") {
    static_cast<void>(
        diagnostics::thread_file_name({L"a label that leaves no room for the rest of the name.", 1, true}, 4));
  }
  if (kind == "Exception") std::thread([] { throw std::runtime_error("nobody catches this"); }).join();
  std::_Exit(5);
}

int crash(const std::string& label, const std::string& kind) {
  const host::TableFactories library{ky::library::factories()};
  host::Session session(real(), library);
  if (!session.start(host::built_in_script_key()).empty()) return 6;
  const std::string script = support::ScriptText(real().cipher)
                                 .add("CrashHandler")
                                 .add("Logger", {{"label", label}, {"crypt", "AES"}, {"length", "256"}})
                                 .text();
  host::RunObserver observer;
  if (!session.load(script).empty() || session.run(observer).end != host::RunEnd::finished) return 7;
  ky::Trace(L"%s\n", L"the last words");
  fault(kind);
}

}  // namespace
}  // namespace scenario

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  return std::string(argv[1]) == "write" ? scenario::write_until_ended(argv[2], argv[3])
                                         : scenario::crash(argv[2], argv[3]);
}
