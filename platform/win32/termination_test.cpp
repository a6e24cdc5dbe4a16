#include "platform/win32/termination.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace win32 {

namespace {

struct EndsTheTestIfUnwound {
  ~EndsTheTestIfUnwound() { std::exit(99); }
};

TEST(Termination, AStopPassesByEveryHandlerAndEndsTheProcess) {
  Termination termination;
  const auto stop = [&](ports::StopKind kind) {
    try {
      const EndsTheTestIfUnwound never;
      termination.stop({kind, L"a reason"});
    } catch (...) {
      std::exit(98);
    }
  };
  using ports::StopKind;
  for (const StopKind kind : {StopKind::invalid_parameter, StopKind::assertion, StopKind::step_limit}) {
    EXPECT_EXIT(stop(kind), testing::ExitedWithCode(static_cast<int>(stop_code(kind))), "Stopped: a reason");
  }
}

}  // namespace

}  // namespace win32
