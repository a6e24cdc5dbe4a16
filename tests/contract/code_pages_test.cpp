#include "ky/decrypter.h"
#include "platform/ports/text.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

namespace code = ports::code;
namespace page = ports::code_page;

class CodePages : public Contract {
 protected:
  ports::CodePages& text() { return system().text; }

  std::wstring wide(std::uint32_t code_page, std::string_view narrow) {
    wchar_t buffer[64] = {};
    const auto size = static_cast<std::int32_t>(narrow.size());
    const std::int32_t count = text().to_wide(code_page, 0, narrow.data(), size, buffer, 64);
    EXPECT_EQ(text().to_wide(code_page, 0, narrow.data(), size, nullptr, 0), count) << "asked for the size";
    return {buffer, static_cast<std::size_t>(count)};
  }
  std::string narrow(std::uint32_t code_page, std::wstring_view from) {
    char buffer[64] = {};
    const auto size = static_cast<std::int32_t>(from.size());
    const std::int32_t count = text().to_narrow(code_page, 0, from.data(), size, buffer, 64);
    EXPECT_EQ(text().to_narrow(code_page, 0, from.data(), size, nullptr, 0), count) << "asked for the size";
    return {buffer, static_cast<std::size_t>(count)};
  }
};

/// UTF-16 code units, also of what lies beyond the basic plane.
const std::wstring beyond = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
const std::wstring lone = {L'a', static_cast<wchar_t>(0xD83D), L'b'};

TEST_P(CodePages, TextConvertsBothWays) {
  struct Row {
    std::uint32_t code_page;
    std::string narrow;
    std::wstring wide;
  };
  const Row rows[] = {{page::utf8, "plain", L"plain"},
                      {page::utf8, "\xC3\xA9\xE2\x82\xAC", L"\x00E9\x20AC"},
                      {page::utf8, "\xF0\x9F\x98\x80", beyond},
                      {page::active, "\xE9\x80", L"\x00E9\x20AC"}};
  for (const Row& row : rows) {
    EXPECT_EQ(wide(row.code_page, row.narrow), row.wide) << row.narrow;
    EXPECT_EQ(narrow(row.code_page, row.wide), row.narrow) << row.narrow;
  }
}

TEST_P(CodePages, WhatHasNoFormIsReplaced) {
  EXPECT_EQ(wide(page::utf8,
                 "a\xFF"
                 "b"),
            L"a\xFFFD"
            L"b");
  EXPECT_EQ(narrow(page::utf8, lone),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(narrow(page::active,
                   L"a\x0416"
                   L"b"),
            "a?b");
}

TEST_P(CodePages, SizesAndRefusals) {
  wchar_t wide_buffer[4];
  char narrow_buffer[4];
  EXPECT_EQ(text().to_wide(page::utf8, 0, "abc", -1, wide_buffer, 4), 4) << "with the terminator";
  EXPECT_EQ(text().to_narrow(page::utf8, 0, L"abc", -1, narrow_buffer, 4), 4);
  EXPECT_EQ(code_of(text().to_wide(page::utf8, 0, "abcd", -1, wide_buffer, 4) != 0), code::insufficient_buffer);
  EXPECT_EQ(code_of(text().to_narrow(page::utf8, 0, L"abcd", -1, narrow_buffer, 4) != 0), code::insufficient_buffer);
  EXPECT_EQ(code_of(text().to_wide(page::utf8, 0, "a", 0, wide_buffer, 4) != 0), code::invalid_parameter);
  EXPECT_EQ(code_of(text().to_wide(54321, 0, "a", 1, wide_buffer, 4) != 0), code::invalid_parameter);
  EXPECT_EQ(system().winapi.MultiByteToWideChar(page::utf8, 0, "abc", 3, wide_buffer, 4), 3)
      << "the boundary's table leads to the same conversion";
}

TEST_P(CodePages, TheSystemSaysWhatACodeMeansOrNothing) {
  EXPECT_NE(text().system_message(code::access_denied).find("denied"), std::string::npos);
  EXPECT_NE(text().system_message(code::invalid_handle), "");
  EXPECT_EQ(text().system_message(0x2FFFFFFF), "");
}

KY_CONTRACT(CodePages);

}  // namespace

}  // namespace contract
