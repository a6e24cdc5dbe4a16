#include "diagnostics/reader/run_names.h"

#include <gtest/gtest.h>

namespace {

using diagnostics::reader::LogName;
using diagnostics::reader::parse_log_name;
using diagnostics::reader::same_run;

TEST(LogNames, TellRunThreadAndForm) {
  const LogName thread = parse_log_name("setup.1763128000.4242.v2.bin").value();
  EXPECT_EQ(thread.stem, "setup.1763128000");
  EXPECT_EQ(thread.start_time, "1763128000");
  EXPECT_EQ(thread.thread, 4242U);
  EXPECT_TRUE(thread.sealed);
  EXPECT_TRUE(parse_log_name("1763128000.kyinstall.bin").value().merged());
  for (const char* name : {"", ".bin", "1.bin", "a.b.bin", "1763128000.4242.v2.txt", "1763128000.99999999999.bin",
                           "1763128000.-1.bin", "setup.kyinstall.bin"}) {
    EXPECT_FALSE(parse_log_name(name).has_value()) << name;
  }
}

TEST(LogNames, ARunIsLabelTimeAndForm) {
  const struct {
    const char* a;
    const char* b;
    bool same;
  } cases[] = {
      {"s.7.1.bin", "s.7.2.bin", true},
      {"s.7.1.bin", "s.7.kyinstall.bin", true},
      {"s.7.1.bin", "s.tag7.kyinstall.bin", true},
      {"s.7.1.bin", "s.tag97.kyinstall.bin", true},
      {"7.1.bin", "7.kyinstall.bin", true},
      {"7.1.bin", "s.7.kyinstall.bin", false},
      {"s.7.1.bin", "t.7.1.bin", false},
      {"s.7.1.bin", "s.8.1.bin", false},
      {"s.7.1.bin", "s.7.1.v2.bin", false},
      {"s.7.1.bin", "t.7.kyinstall.bin", false},
  };
  for (const auto& [a, b, same] : cases) {
    EXPECT_EQ(same_run(parse_log_name(a).value(), parse_log_name(b).value()), same) << a << " " << b;
    EXPECT_EQ(same_run(parse_log_name(b).value(), parse_log_name(a).value()), same) << b << " " << a;
  }
}

}  // namespace
