#include "platform/record/describe.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "platform/record/ledger.h"
#include "platform/record/paths.h"

namespace record {
namespace {

using ports::RegistryType;

std::vector<std::uint8_t> units(std::wstring_view text) {
  std::vector<std::uint8_t> bytes;
  for (const wchar_t unit : text) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

TEST(Describe, AValueIsShownByItsTypeAndData) {
  using std::literals::operator""sv;
  const struct {
    ports::RegistryValue value;
    const wchar_t* text;
  } cases[] = {
      {{RegistryType::text, units(L"C:\\x\0"sv)}, L"REG_SZ \"C:\\x\""},
      {{RegistryType::text, units(L"\0"sv)}, L"REG_SZ \"\""},
      {{RegistryType::text, units(L"a"sv)}, L"REG_SZ 61 00"},  // no terminator
      {{RegistryType::text, units(L"a\0b\0"sv)}, L"REG_SZ 61 00 00 00 62 00 00 00"},
      {{RegistryType::text, {0x61}}, L"REG_SZ 61"},
      {{RegistryType::text, {}}, L"REG_SZ"},
      {{RegistryType::text_list, units(L"a\0bc\0\0"sv)}, L"REG_MULTI_SZ \"a\" \"bc\""},
      {{RegistryType::text_list, units(L"\0"sv)}, L"REG_MULTI_SZ"},
      {{RegistryType::link, units(L"\\Registry"sv)}, L"REG_LINK \"\\Registry\""},
      {{RegistryType::number, {0x78, 0x56, 0x34, 0x12}}, L"REG_DWORD 0x12345678"},
      {{RegistryType::number, {1, 0}}, L"REG_DWORD 01 00"},
      {{RegistryType::number64, {1, 0, 0, 0, 0, 0, 0, 0x80}}, L"REG_QWORD 0x8000000000000001"},
      {{static_cast<RegistryType>(99), {0xAB}}, L"type 99 ab"},
  };
  for (const auto& row : cases) EXPECT_EQ(describe_value(row.value), row.text);
}

TEST(Describe, LongDataThatDiffersOnlyBehindTheCutIsToldApart) {
  ports::RegistryValue value{RegistryType::binary, std::vector<std::uint8_t>(100, 7)};
  const std::wstring first = describe_value(value);
  value.bytes.back() = 8;
  EXPECT_NE(describe_value(value), first);
}

TEST(Paths, AllSpellingsOfAPathBecomeOne) {
  const wchar_t* const cases[][2] = {
      {L"C:/a//b\\", L"C:\\a\\b"},
      {L"C:\\", L"C:\\"},
      {L"\\\\?\\C:\\a", L"C:\\a"},
      {L"\\\\?\\UNC\\server\\share", L"\\\\server\\share"},
      {L"\\\\server\\share\\\\x", L"\\\\server\\share\\x"},
      {L"", L""},
      {L"\\", L"\\"},
  };
  for (const auto& row : cases) EXPECT_EQ(plain_path(row[0]), row[1]);
}

TEST(Difference, AThingThatBecameAnotherKindWentAndCame) {
  std::vector<Change> changes;
  add_difference(changes, L"x", State{"file", L"1 bytes"}, State{"folder", L"present"});
  EXPECT_EQ(changes, (std::vector<Change>{{"file", L"x", L"1 bytes", std::nullopt},
                                          {"folder", L"x", std::nullopt, L"present"}}));
}

}  // namespace
}  // namespace record
