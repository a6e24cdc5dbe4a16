#include "diagnostics/reader/unscrambler.h"

#include <gtest/gtest.h>

#include <vector>

#include "diagnostics/log_format.h"
#include "diagnostics/log_lines.h"
#include "installer/utils/base/strings/utf8.h"

namespace {

using diagnostics::reader::Unscrambler;

constexpr std::string_view key = diagnostics::log_format::fall_back_key;

/// What the writer makes of a message.
std::string scrambled(const std::wstring& text) {
  diagnostics::Scratch<std::uint8_t> scratch;
  const diagnostics::TimeStamp stamp{};
  const std::vector<std::uint8_t> bytes_of_key(key.begin(), key.end());
  const auto line = diagnostics::scrambled_line(stamp, text + L'\n', bytes_of_key, scratch);
  return {line.begin() + stamp.size(), line.end() - std::ssize(diagnostics::log_format::line_end)};
}

std::wstring turned_back(const std::string& utf8) {
  std::wstring text;
  Unscrambler(key).turn_back(utf8, text);
  return text;
}

TEST(Unscrambling, EveryUnitAtEveryKeyIndexComesBackButForThoseThatTheFormLoses) {
  for (unsigned value = 1; value < 0x10000; value += value < 0x300 ? 1 : 7) {
    if (value >= 0xD800 && value <= 0xDFFF) continue;
    for (std::size_t before = 0; before < key.size(); before += value < 0x300 ? 1 : 5) {
      const std::wstring text = std::wstring(before, L'y') + static_cast<wchar_t>(value) + L" and so on";
      const std::string utf8 = scrambled(text);
      // U+FFFD stands for all that the text stream could not hold.
      const bool lost = utf8.find("\xEF\xBF\xBD") != std::string::npos;
      std::wstring back = turned_back(utf8);
      for (std::size_t i = 0; i < text.size(); ++i) {
        if (back[i] == text[i] || (lost && i == before && back[i] == 0xFFFD)) continue;
        // A byte that is 0x0A is taken for one that was left alone.
        const bool line_feed = (text[i] & 0xFF) == 0x0A || (text[i] & 0xFF00) == 0x0A00;
        ASSERT_TRUE(line_feed && !lost) << value << " " << before;
      }
      ASSERT_EQ(back.size(), text.size());
    }
  }
}

TEST(Unscrambling, ALostCharacterCostsNothingElse) {
  // U+9Bxx behind an even number of key bytes and U+9B00, which spends one, both lost at key bytes 'A' to 'F'.
  const std::wstring texts[] = {
      L"\u9B3C is gone, the rest is not",
      L"a\u9B00, whose low byte is zero, is gone as well",
      L"\u9B3C\u9B3C, then 123 files in C:\\Program Files\\Tavrine and a\u9B00 at the end of all this text",
      L"\u9B3C\u65E5\u672C\u8A9E\u306E\u30C6\u30AD\u30B9\u30C8\u3067\u3059",
  };
  for (const std::wstring& text : texts) {
    const std::string utf8 = scrambled(text);
    ASSERT_NE(utf8.find("\xEF\xBF\xBD"), std::string::npos);
    const std::wstring back = turned_back(utf8);
    ASSERT_EQ(back.size(), text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
      EXPECT_TRUE(back[i] == 0xFFFD || back[i] == text[i]) << base::strings::to_utf8(back);
    }
  }
}

TEST(Unscrambling, BytesThatAreNoUtf8DoNotSpoilWhatFollowsThem) {
  const std::wstring text = L"Begin \u65E5 of DeleteFolder, and so the text goes on for a while";
  std::string utf8 = scrambled(text);
  const std::size_t at = utf8.find_first_of("\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9");
  ASSERT_NE(at, std::string::npos);
  utf8[at + 1] = 'x';
  const std::wstring back = turned_back(utf8);
  EXPECT_TRUE(back.starts_with(L"Begin ")) << base::strings::to_utf8(back);
  EXPECT_TRUE(back.ends_with(L" of DeleteFolder, and so the text goes on for a while")) << base::strings::to_utf8(back);
}

}  // namespace
