#include "tools/ky/rehearse/clock_keys.h"

#include <gtest/gtest.h>

namespace rehearsal {
namespace {

TEST(ClockKeys, AreWhatTheClockGivesAndWhatIsComputedFromItInAnyOrder) {
  const script::PlainScript plain = script::read_plain_script("", R"(<install version="1.0"><commands>
      <Evaluate expression="Limit / 60" resultVar="Minutes"/>
      <GetDateTime var="Now"/>
      <Evaluate expression="Limit = Now - 86400"/>
      <Evaluate expression="Component + 1" resultVar="Component"/>
      <SetVariable var="Now2" value="1"/>
    </commands></install>)");
  EXPECT_EQ(clock_keys(plain), (std::set<std::string>{"int_Limit", "int_Minutes", "int_Now"}));
}

}  // namespace
}  // namespace rehearsal
