#include "tools/ky/rehearse/summary.h"

#include <gtest/gtest.h>

#include <sstream>

namespace rehearsal {
namespace {

TEST(Summary, ShowsCommandsChangesProcessesDeletionsAndTheEnd) {
  Outcome outcome;
  outcome.return_code = 1359;
  outcome.commands = {{0, "Nop", true, 0, 1}, {1, "RunCommand", true, 2, 2}, {2, "Jump", false, 0, 3}};
  outcome.changes = {{"file", L"C:\\a", L"", std::nullopt},
                     {"file", L"C:\\b", L"", std::nullopt},
                     {"file", L"C:\\c", L"x", L"y"},
                     {"registry-key", L"HKEY_LOCAL_MACHINE\\a", L"", std::nullopt}};
  outcome.deletions = {{"file", L"C:\\a", 0, true}, {"file", L"C:\\n", 2, true}, {"folder", L"C:\\held", 32, false}};
  record::SeenProcess process;
  process.name = L"a.exe";
  process.path_error = 5;
  outcome.processes.push_back(process);  // its path cannot be read
  process.path = L"C:\\a.exe";
  outcome.processes.push_back(process);  // another file
  process.open_error = 87;
  outcome.processes.push_back(process);  // not opened, and still there
  process.runs = false;
  outcome.processes.push_back(process);  // not opened, and yet gone after it was asked
  process.opened = process.runs = true;
  outcome.processes.push_back(process);  // could not be terminated
  process.terminated = true;
  outcome.processes.push_back(process);
  outcome.stopped = Stop{7, "Jump", "no text"};
  std::ostringstream out;
  print_summary({"Title", "out", {"result.json", "log.txt"}}, outcome, nullptr, out);
  EXPECT_EQ(out.str(),
            "Title\n\n"
            "  Commands     2 run, 1 skipped; 1 with a result other than 0\n"
            "                 1: RunCommand gave 2\n"
            "  Changes      2 files removed, 1 file altered\n"
            "               1 registry key removed\n"
            "  Closed       C:\\a.exe\n"
            "  Terminated   C:\\a.exe\n"
            "  Left alone   a.exe  (its path cannot be read, error 5)\n"
            "               C:\\a.exe  (another file of that name)\n"
            "               C:\\a.exe  (it cannot be opened, error 87)\n"
            "               C:\\a.exe  (it still runs)\n"
            "  Removed      C:\\a\n"
            "  Was absent   C:\\n\n"
            "  Still there  C:\\held  (folder, error 32)\n"
            "  Stopped      at 7: Jump: no text\n"
            "  Return code  1359\n"
            "  Files        out: result.json log.txt\n");
}

TEST(Summary, AReceiptStandsForTheDeletionsThatFailed) {
  Outcome outcome;
  outcome.deletions = {{"folder", L"C:\\held", 32, false}};
  for (int i = 0; i < 12; ++i) outcome.deletions.push_back({"file", L"C:\\" + std::to_wstring(i), 2, true});
  receipt::Receipt receipt;
  receipt.rows.resize(3);
  receipt.rows[0].state = receipt::State::removed_now;
  receipt.rows[1] = {{host::TargetKind::folder, L"C:\\held"}, receipt::State::still_there, L"error 32"};
  receipt.rows[2] = {{host::TargetKind::registry_value, L"HKEY_USERS\\u"}, receipt::State::still_there, L"error 5"};
  receipt.not_named = {{7, "DeleteFile", {"pathFile", L"[X]a", L"[X] is never set"}}};
  std::ostringstream out;
  print_summary({"Title", "", {}}, outcome, &receipt, out);
  EXPECT_EQ(out.str(),
            "Title\n\n"
            "  Commands     0 run, 0 skipped\n"
            "  Changes      none\n"
            "  Was absent   C:\\0\n               C:\\1\n               C:\\2\n               C:\\3\n"
            "               C:\\4\n               C:\\5\n               C:\\6\n               C:\\7\n"
            "               C:\\8\n               C:\\9\n               and 2 more\n"
            "  Receipt      3 named: 1 removed now, 0 already absent, 2 still there; 1 not named\n"
            "  Still there  C:\\held  (folder: error 32)\n"
            "               HKEY_USERS\\u\\(default)  (registry-value: error 5)\n"
            "  Not named    7: DeleteFile pathFile \"[X]a\": [X] is never set\n"
            "  Return code  0\n");
}

}  // namespace
}  // namespace rehearsal
