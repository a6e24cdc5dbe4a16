#include "platform/machine/path.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/machine/wildcard.h"
#include "platform/ports/codes.h"

namespace machine {
namespace {

namespace code = ports::code;

TEST(Path, IsMadeWholeAndClean) {
  const struct {
    const wchar_t* text;
    const wchar_t* expected;
  } rows[] = {
      {L"C:\\a\\b", L"C:\\a\\b"},
      {L"c:/a//b/", L"C:\\a\\b"},
      {L"C:\\a\\.\\b\\..\\c", L"C:\\a\\c"},
      {L"C:\\..\\..\\a", L"C:\\a"},
      {L"C:\\a. . ", L"C:\\a"},
      {L"C:\\a.\\b...", L"C:\\a\\b"},
      {L"C:\\a...\\b", L"C:\\a...\\b"},
      {L"x", L"C:\\here\\now\\x"},
      {L"..\\x", L"C:\\here\\x"},
      {L"\\x", L"C:\\x"},
      {L"c:x", L"C:\\here\\now\\x"},
      {L"D:x", L"D:\\x"},
      {L"C:", L"C:\\here\\now"},
      {L"\\\\?\\C:\\a.\\b ", L"C:\\a.\\b "},
      {L"C:\\a\\ ..\\b", L"C:\\a\\ ..\\b"},
  };
  for (const auto& row : rows) {
    const ParsedPath parsed = parse_path(row.text, L"C:\\here\\now");
    EXPECT_EQ(parsed.error, code::success);
    EXPECT_EQ(to_text(parsed.path), row.expected);
  }
}

TEST(Path, IsRefusedWithTheSystemsCode) {
  const std::wstring tail(258, L'x');
  const std::wstring parts = std::wstring(100, L'x') + L"\\" + std::wstring(100, L'y') + L"\\";
  const struct {
    std::wstring text;
    ports::ErrorCode error;
  } rows[] = {
      {L"", code::path_not_found},
      {L"  ", code::path_not_found},
      {L"C:\\a*b", code::invalid_name},
      {L"C:\\a?\\b", code::invalid_name},
      {L"C:\\a\tb", code::invalid_name},
      {L"C:\\a:b", code::invalid_name},
      {L"\\\\server\\share\\x", code::bad_network_path},
      {L"\\\\.\\C:", code::file_not_found},
      {L"\\\\?\\x", code::path_not_found},
      {L"\\\\?\\C:\\" + tail, code::invalid_name},
      {L"C:\\" + parts + std::wstring(54, L'z'), code::success},            // 259 characters
      {L"C:\\" + parts + std::wstring(55, L'z'), code::filename_too_long},  // 260
      {L"\\\\?\\C:\\" + parts + std::wstring(200, L'z'), code::success},
  };
  for (const auto& row : rows) EXPECT_EQ(parse_path(row.text, L"C:\\").error, row.error) << row.text.size();
}

TEST(Wildcard, FindsWhatTheSystemFinds) {
  const struct {
    const wchar_t* pattern;
    const wchar_t* name;
    bool found;
  } rows[] = {
      {L"*", L"", true},           {L"*.*", L"name", true},        {L"*.", L"name", true},
      {L"*.", L"name.txt", false}, {L"*.txt", L"a.b.TXT", true},   {L"*.txt", L"a.txtx", false},
      {L"a?c", L"abc", true},      {L"a?c", L"ac", false},         {L"a??", L"a", true},
      {L"a?.txt", L"a.txt", true}, {L"a?.txt", L"abc.txt", false}, {L"name", L"NAME", true},
      {L"a.?", L"a", true},        {L"*b*", L"abc", true},         {L"*b", L"abc", false},
      {L"..", L"..", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(matches(search_expression(row.pattern), row.name), row.found)
        << std::string(row.pattern, row.pattern + 1);
  }
}

}  // namespace
}  // namespace machine
