#include "platform/machine/unicode.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/machine/base64.h"

namespace machine {
namespace {

TEST(Unicode, IllFormedPiecesBecomeOneReplacementEach) {
  const struct {
    const char* bytes;
    std::wstring units;
  } rows[] = {
      {"a\xC3\xA4\xE2\x82\xAC", L"a\u00E4\u20AC"},
      {"\xF0\x9F\x98\x80", {wchar_t{0xD83D}, wchar_t{0xDE00}}},
      {"\xE2\x82z", L"\uFFFDz"},                // a cut character
      {"\xC0\x80", L"\uFFFD\uFFFD"},            // overlong
      {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},  // a surrogate
      {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xF0\x9F\x98", L"\uFFFD"},
      {"\x80\xFF", L"\uFFFD\uFFFD"},
  };
  for (const auto& row : rows) EXPECT_EQ(utf16_from(row.bytes), row.units) << row.bytes;
  EXPECT_EQ(utf8_from(std::wstring{wchar_t{0xD83D}, wchar_t{0xDE00}, wchar_t{0xD83D}, L'x'}),
            "\xF0\x9F\x98\x80\xEF\xBF\xBDx");
  EXPECT_EQ(first_ill_formed("ab\xE2\x82"), 2u);
}

TEST(Base64, TakesExactlyWhatItGives) {
  for (const std::string text : {"", "a", "ab", "abc", "\xFF\xFE\xFD\xFC"}) {
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    EXPECT_EQ(bytes_from_base64(base64_from(bytes)), bytes);
  }
  for (const char* bad : {"A", "AA=A", "AB==", "A===", "====", "AA==AAAA", "A-AA"}) {
    EXPECT_FALSE(bytes_from_base64(bad)) << bad;
  }
}

}  // namespace
}  // namespace machine
