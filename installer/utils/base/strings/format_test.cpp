#include "installer/utils/base/strings/format.h"

#include <gtest/gtest.h>

#include <limits>

namespace base::strings {
namespace {

constexpr const wchar_t* no_text = nullptr;
constexpr const char* no_narrow_text = nullptr;

// What Microsoft's runtime prints for the same calls.
TEST(Format, FollowsMicrosoftsRules) {
  const struct {
    std::wstring got;
    const wchar_t* expected;
  } rows[] = {
      {format(L"%i %d", -7, std::numeric_limits<std::int32_t>::min()), L"-7 -2147483648"},
      {format(L"%u %lu %ld", 4294967295u, 4000000000u, -1), L"4294967295 4000000000 -1"},
      {format(L"%x %X %#x %#X %#x", 48879u, 48879u, 255u, 255u, 0u), L"beef BEEF 0xff 0XFF 0"},
      {format(L"%I64u %I64d", std::uint64_t{18446744073709551615u}, std::int64_t{-5}), L"18446744073709551615 -5"},
      {format(L"%02ld:%03ld:%05d", 5, 7, -42), L"05:007:-0042"},
      {format(L"%+d|% d|%5d|%-5d|%.3d|%.0d", 5, 5, 5, 5, 5, 0), L"+5| 5|    5|5    |005|"},
      {format(L"%s|%S|%ls|%hs", L"wide", "narrow", L"w", "n"), L"wide|narrow|w|n"},
      {format(L"%S", "\xC3\xA9"), L"\u00C3\u00A9"},
      {format(L"%s %S", no_text, no_narrow_text), L"(null) (null)"},
      {format(L"%.2s|%5s|%-5s|", L"abcdef", L"ab", L"ab"), L"ab|   ab|ab   |"},
      {format(L"%*d|%c|100%%|%q|%", 4, 7, static_cast<std::int32_t>(L'x')), L"   7|x|100%|q|"},
      {format(L"%i", true), L"1"},
  };
  for (const auto& row : rows) EXPECT_EQ(row.got, row.expected);
}

TEST(Format, TheNarrowFamilyTurnsTheStringsRound) {
  EXPECT_EQ(format("int_%S", L"Name"), "int_Name");
  EXPECT_EQ(format("%s", "narrow"), "narrow");
  // A unit that no byte holds ends the text.
  EXPECT_EQ(format("%S|", L"a\u00E9\u0416z"), "a\xE9|");
}

}  // namespace
}  // namespace base::strings
