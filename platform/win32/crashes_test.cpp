#include "platform/win32/crashes.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <functional>
#include <thread>

#include "platform/win32/termination.h"

namespace win32 {

namespace {

/// Says so and lets the process end.
class TellingFilter final : public ports::CrashFilter {
 public:
  std::int32_t on_crash(ports::ExceptionPointers* exception) override {
    const auto* const pointers = reinterpret_cast<EXCEPTION_POINTERS*>(exception);
    std::fprintf(stderr, "filter saw %08lx", pointers->ExceptionRecord->ExceptionCode);
    std::fflush(stderr);
    return 1;
  }
};

void write_to_null() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
}

TEST(Crashes, EveryFaultReachesTheFilter) {
  struct Row {
    const char* name;
    std::function<void()> fault;
    DWORD code;
    const char* seen;
  };
  const auto stop = [](ports::StopKind kind) { Termination().stop({kind, L"a reason"}); };
  const Row rows[] = {
      {"access violation", write_to_null, EXCEPTION_ACCESS_VIOLATION, "filter saw c0000005"},
      {"on another thread", [] { std::thread(write_to_null).join(); }, EXCEPTION_ACCESS_VIOLATION,
       "filter saw c0000005"},
      {"invalid parameter", [&] { stop(ports::StopKind::invalid_parameter); }, EXCEPTION_ACCESS_VIOLATION,
       "filter saw c0000005"},
      {"assertion", [&] { stop(ports::StopKind::assertion); }, stop_code(ports::StopKind::assertion),
       "filter saw e04b5903"},
      {"uncaught exception", [] { std::thread([] { throw 1; }).join(); }, 0xE0435050, "filter saw e0435050"},
  };
  TellingFilter filter;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EXIT(
        {
          Crashes crashes;
          crashes.set_filter(filter);
          crashes.set_invalid_parameter_handler();
          row.fault();
        },
        testing::ExitedWithCode(static_cast<int>(row.code)), row.seen);
  }
}

}  // namespace

}  // namespace win32
