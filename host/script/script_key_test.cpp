#include "host/script/script_key.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "installer/utils/base/strings/base64.h"

namespace {

TEST(Base64, GoesBothWaysAtEveryLengthOfAGroup) {
  const struct {
    std::string plain, text;
  } rows[] = {{"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"\xFB\xEF\xFF", "++//"}};
  for (const auto& row : rows) {
    const std::vector<std::uint8_t> plain(row.plain.begin(), row.plain.end());
    EXPECT_EQ(base::strings::encode_base64(plain), row.text);
    std::vector<std::uint8_t> back(plain.size());
    EXPECT_EQ(base::strings::decode_base64(row.text, back), plain.size()) << row.text;
    EXPECT_EQ(back, plain);
  }
}

TEST(Base64, WhatIsNotWholeOrDoesNotFitIsRefused) {
  std::vector<std::uint8_t> three(3);
  for (const char* const text : {"Zg=", "Zg", "Z===", "Zh==", "Zm9v!g==", "Z=9v", "Zm9vZm9v", "===="}) {
    EXPECT_EQ(base::strings::decode_base64(text, three), std::nullopt) << text;
  }
}

TEST(ScriptKeyFile, AKeyGoesToItsFileAndBack) {
  host::ScriptKey key{};
  for (std::size_t i = 0; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(i * 9);
  const std::string text = host::format_script_key(key);
  host::ScriptKey read{};
  EXPECT_EQ(host::parse_script_key(text, read), "");
  EXPECT_EQ(read, key);

  std::string windows_lines;
  for (const char c : text) windows_lines += c == '\n' ? "\r\n" : std::string(1, c);
  EXPECT_EQ(host::parse_script_key("\r\n" + windows_lines, read), "");
}

TEST(ScriptKeyFile, WhatIsWrongIsSaid) {
  const std::string begin = "-----BEGIN KY SCRIPT KEY-----\n";
  const std::string end = "\n-----END KY SCRIPT KEY-----\n";
  const std::string good = "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=";
  const struct {
    std::string text, reason;
  } rows[] = {
      {" \n", "the file is empty"},
      {good, "does not begin"},
      {begin + good, "does not end"},
      {begin + "AAAA" + end, "3 bytes instead of 32"},
      {begin + good + good + end, "not base64"},
      {begin + "no key!" + end, "not base64"},
      {begin + std::string(200, 'A') + end, "not base64"},
  };
  for (const auto& row : rows) {
    host::ScriptKey key{};
    EXPECT_NE(host::parse_script_key(row.text, key).find(row.reason), std::string::npos) << row.text;
    EXPECT_EQ(key, host::ScriptKey{}) << "a refused key is not touched";
  }
}

}  // namespace
