#include "installer/utils/base/strings/utf8.h"

#include <gtest/gtest.h>

#include "installer/utils/base/strings/case_fold.h"
#include "installer/utils/base/strings/expand.h"
#include "installer/utils/base/strings/number.h"

namespace base::strings {
namespace {

TEST(Utf8, WellFormedTextComesBack) {
  const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBFz";
  const std::wstring wide = to_wide(text);
  EXPECT_EQ(wide.size(), 7u);  // the character beyond the basic plane takes two units
  EXPECT_EQ(wide[3], static_cast<wchar_t>(0xD83D));
  EXPECT_EQ(to_utf8(wide), text);
  EXPECT_TRUE(is_utf8(text));
}

// ASCII is widened in blocks: whatever stands at their edges has to come through.
TEST(Utf8, OtherCharactersMayStandAnywhereAmongAscii) {
  for (std::size_t before = 0; before < 40; ++before) {
    for (const std::size_t behind :
         {std::size_t{0}, std::size_t{1}, std::size_t{15}, std::size_t{16}, std::size_t{17}}) {
      const std::string text = std::string(before, 'a') + "\xC3\xA9" + std::string(behind, 'b');
      const std::wstring wide = std::wstring(before, L'a') + L"\u00E9" + std::wstring(behind, L'b');
      EXPECT_EQ(to_wide(text), wide) << before << " " << behind;
      EXPECT_EQ(to_utf8(wide), text);
      EXPECT_EQ(to_wide(text.substr(0, before)), wide.substr(0, before));
    }
  }
}

TEST(Utf8, EachIllFormedStretchBecomesOneReplacement) {
  const struct {
    const char* bytes;
    std::size_t replacements;
  } rows[] = {{"\x80", 1},         {"\xC0\xAF", 2}, {"\xE2\x82", 1},         {"\xE0\x80\x80", 3}, {"\xED\xA0\x80", 3},
              {"\xF0\x9F\x98", 1}, {"\xF5\x80", 2}, {"\xF4\x90\x80\x80", 4}, {"\xC3", 1}};
  for (const auto& row : rows) {
    EXPECT_EQ(to_wide(std::string("a") + row.bytes), L"a" + std::wstring(row.replacements, L'\uFFFD')) << row.bytes;
    EXPECT_EQ(first_ill_formed(std::string("a") + row.bytes), 1u) << row.bytes;
  }
}

TEST(Utf8, AnUnpairedSurrogateBecomesAReplacement) {
  const wchar_t high = static_cast<wchar_t>(0xD83D);
  const wchar_t low = static_cast<wchar_t>(0xDE00);
  EXPECT_EQ(to_utf8(std::wstring{high}), "\xEF\xBF\xBD");
  EXPECT_EQ(to_utf8(std::wstring{low, high}), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(to_utf8(std::wstring{high, L'a'}),
            "\xEF\xBF\xBD"
            "a");
  EXPECT_TRUE(is_utf16(std::wstring{L'a', high, low}));
  EXPECT_FALSE(is_utf16(std::wstring{high}));
  EXPECT_FALSE(is_utf16(std::wstring{low, high}));
}

TEST(Number, ReadsLikeTheRuntimeWithALongOf32Bits) {
  const struct {
    const wchar_t* text;
    std::int32_t expected;
  } rows[] = {{L"0x10", 16},
              {L"010", 8},
              {L"10", 10},
              {L"-0x2", -2},
              {L"text", 0},
              {L"", 0},
              {L" 7 apples", 7},
              {L"99999999999", 2147483647},
              {L"-99999999999", -2147483647 - 1},
              {L"08", 0}};
  for (const auto& row : rows) EXPECT_EQ(to_integer(row.text), row.expected) << row.text;
  EXPECT_EQ(to_decimal(L"010"), 10);
  EXPECT_EQ(to_decimal(L"0x10"), 0);
}

TEST(Expand, ReplacesFromTheStartUntilNoNameIsLeft) {
  const auto value_of = [](std::wstring_view name) -> const wchar_t* {
    if (name == L"A") return L"1";
    if (name == L"B") return L"[A]2";
    if (name == L"Open") return L"[";
    if (name == L"Empty") return L"";
    return nullptr;
  };
  const struct {
    const wchar_t* text;
    const wchar_t* expected;  // null where a name is undefined
  } rows[] = {{L"plain", L"plain"},    {L"[A][B]", L"112"}, {L"x[B]y", L"x12y"},   {L"[]x[A]", L"[]x[A]"},
              {L"[A", L"[A"},          {L"A]", L"A]"},      {L"]x[A]", L"]x1"},    {L"[Nope]", nullptr},
              {L"[A][Nope]", nullptr}, {L"[Open]A]", L"1"}, {L"a[Empty]b", L"ab"}, {L"[a]", nullptr},
              {L"[A[A]", nullptr}};
  for (const auto& row : rows) {
    std::wstring text = row.text;
    std::size_t steps = 0;
    const bool done = expand_in_place(text, value_of, [&steps] { ++steps; });
    EXPECT_EQ(done, row.expected != nullptr) << row.text;
    if (done) {
      EXPECT_EQ(text, row.expected) << row.text;
    }
  }
}

TEST(CaseFold, IsAsciiAlone) {
  EXPECT_TRUE(equal_ignoring_case(L"Tavrine[", L"TAVRINE["));
  EXPECT_FALSE(equal_ignoring_case(L"@", L"`"));
  EXPECT_FALSE(equal_ignoring_case(L"\u00C9", L"\u00E9"));
  EXPECT_FALSE(equal_ignoring_case(L"a", L"ab"));
}

}  // namespace
}  // namespace base::strings
