#include "tools/ky/log/spans.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

using log_tool::LogLine;

struct Line {
  std::uint32_t thread;
  std::int64_t at;
  std::wstring message;
};

std::string number(const auto& value) {
  return value ? std::to_string(*value) : "-";
}

/// A span a line: index and name, first and last line, times, ending, next, severity and code.
std::string spans_in(const std::vector<Line>& log) {
  const char* const endings[] = {"end", "next", "log's end", "unwritten"};
  std::map<std::wstring, std::uint32_t> names;
  std::vector<LogLine> lines;
  for (const auto& [thread, at, message] : log) {
    const auto framing = log_tool::framing_of(message);
    const std::uint32_t name =
        names.try_emplace(std::wstring(framing.name), static_cast<std::uint32_t>(names.size())).first->second;
    lines.push_back({thread, at, framing.frame, framing.index, name, framing.next, log_tool::finding_of(message)});
  }
  std::string told;
  for (const log_tool::Span& span : log_tool::spans_of(lines)) {
    const LogLine& first = lines[span.first];
    const std::wstring name(log_tool::framing_of(log[span.first].message).name);
    told += number(first.index) + ' ' + std::string(name.begin(), name.end()) + ' ' + std::to_string(span.first) + '-' +
            std::to_string(span.last) + " @" + std::to_string(first.at) + '-' + std::to_string(span.end) + ' ' +
            endings[static_cast<std::size_t>(span.ending)] + ' ' + number(span.next) + ' ' +
            std::to_string(static_cast<int>(span.finding.severity)) + ' ' + number(span.finding.code) + '\n';
  }
  return told;
}

TEST(Spans, ACommandRunsFromItsFirstLineToItsLastOnItsThread) {
  const struct {
    std::vector<Line> log;
    std::string spans;
  } cases[] = {
      // Threads are told apart, and lines outside of commands belong to none.
      {{{1, 0, L"before\n"},
        {1, 5, L"7: DeleteRegKey Begin execute.\n"},
        {2, 6, L"-3: Nop Begin execute.\n"},
        {1, 9, L"7: DeleteRegKey 'a' result 5.\n"},
        {2, 9, L"-3: Nop End execute. Next command -2.\n"},
        {1, 12, L"7: DeleteRegKey End execute. Next command 8.\n"},
        {1, 13, L"after\n"}},
       "7 DeleteRegKey 1-5 @5-12 end 8 2 5\n-3 Nop 2-4 @6-9 end -2 0 -\n"},
      // Wordings of their own; the fall-back form has no line ends.
      {{{1, 0, L"0: LoadFilesFromResources Begin execute."},
        {1, 1, L"0: resource='20005' loaded in 'ConfigXml'"},
        {1, 2, L"0: LoadFilesFromResources End execute. Next command 12"},
        {1, 3, L"12: GetDateTime Begin execute 'int_Now'=5."},
        {1, 4, L"12: GetDateTime End execute. Next command 13."},
        {1, 5, L"13: RegKeyExists 'Software\\A' Begin."},
        {1, 6, L"13: RegKeyExists End execute. Next command 14."},
        {1, 7, L"14 DeleteIfeoKeys: Begin execute"},
        {1, 8, L"14 DeleteIfeoKeys: End execute"}},
       "0 LoadFilesFromResources 0-2 @0-2 end 12 0 -\n12 GetDateTime 3-4 @3-4 end 13 0 -\n"
       "13 RegKeyExists 5-6 @5-6 end 14 0 -\n14 DeleteIfeoKeys 7-8 @7-8 end - 0 -\n"},
      {{{1, 0, L"Executing DeleteFile command\n"},
        {1, 1, L"DeleteFile error: 32\n"},
        {1, 2, L"9: CDeleteFileCommand Error: GetTempFileName failed.\n"},
        {1, 3, L"Finished delete file\n"}},
       "- DeleteFile 0-3 @0-3 end - 2 32\n"},
      // Without a begin line the span begins where the thread first speaks of the command.
      {{{1, 0, L"2: GetStringFromXml End execute. Next command 3.\n"},
        {1, 1, L"3: GetStringFromXml : String_A=\"b\".\n"},
        {2, 2, L"other\n"},
        {1, 3, L"could not be found\n"},
        {1, 4, L"3: GetStringFromXml End execute. Next command 4.\n"}},
       "2 GetStringFromXml 0-0 @0-0 end 3 0 -\n3 GetStringFromXml 1-4 @1-4 end 4 1 -\n"},
      // Without an end line it ends with the thread's next command, or with the log.
      {{{1, 0, L"1: CloseProcess Begin execute.\n"},
        {1, 1, L"Running command : success\n"},
        {1, 9, L"2: Nop Begin execute.\n"},
        {1, 10, L"Warning: x\n"},
        {1, 12, L"3: GetStringFromXml : x\n"},
        {1, 14, L"3: GetStringFromXml End execute. Next command 4.\n"},
        {1, 15, L"4: StopSFCommand Begin execute.\n"},
        {2, 99, L"the last\n"}},
       "1 CloseProcess 0-1 @0-9 next - 0 -\n2 Nop 2-3 @9-12 next - 1 -\n3 GetStringFromXml 4-5 @12-14 end 4 0 -\n"
       "4 StopSFCommand 6-6 @15-99 log's end - 0 -\n"},
      // These never write one.
      {{{1, 0, L"0: CrashHandler Begin execute.\n"}, {1, 5, L"1: Logger Begin execute.\n"}, {1, 9, L"x\n"}},
       "0 CrashHandler 0-0 @0-0 unwritten - 0 -\n1 Logger 1-1 @5-5 unwritten - 0 -\n"},
      {{{1, 0, L"99999999999: Nop Begin execute.\n"}, {1, 0, L"1: Begin execute.\n"}, {1, 0, L": x\n"}, {1, 0, L""}},
       ""},
  };
  for (const auto& [log, spans] : cases) EXPECT_EQ(spans_in(log), spans);
}

TEST(Findings, WordsAndCodesOfAMessageAreJudgedAndNamesInItAreNot) {
  const struct {
    const wchar_t* message;
    int severity;
    std::optional<std::int64_t> code;
    bool exit_code = false;
  } cases[] = {
      {L"7: DeleteFolder 'C:\\Error: 5\\' result 0.\n", 0, 0},
      {L"7: DeleteFolder 'C:\\a' result 5.", 2, 5},
      {L"7: DeleteRegKey 'a' result 2.\n", 0, 2},
      {L"[Expression Parser] Error: no such variable (ln 1, col 12)\n", 2, {}},
      {L"7: RunCommand Error: the launch failed. Error 740.\n", 2, 740},
      {L"Could not get Win FW status for public networks. Error code 0x80070005.", 2, 0x80070005},
      {L"[PathExists] Path='C:\\a' doesn't exist. GetLastError: '2'\n", 0, 2},
      {L"Could not delete key a. Error 1168.", 1, 1168},
      {L"7: RunCommand the program ended with 3.\n", 1, 3, true},
      {L"7: RunCommand the program ended with 0.\n", 0, 0, true},
      {L"Preparing to delete file C:\\error\\error.log \n", 0, {}},
      {L"2: Jump: 0('ConfigError') != 0. False => 4.\n", 0, {}},
      {L"Enable Windows Defender result = 8007000e\n", 0, {}},
      {L"error 99999999999\n", 2, {}},
      {L"[InstallCommand] Warning: GetNextIndex called before Execute\n", 0, {}},
      {L"[WindowManager]: Could not wait for the specified event.", 1, {}},
      {L"result", 0, {}},
  };
  for (const auto& [message, severity, code, exit_code] : cases) {
    const log_tool::Finding finding = log_tool::finding_of(message);
    EXPECT_EQ(static_cast<int>(finding.severity), severity) << std::string(message, message + wcslen(message));
    EXPECT_EQ(finding.code, code) << std::string(message, message + wcslen(message));
    EXPECT_EQ(finding.exit_code, exit_code);
  }
}

}  // namespace
