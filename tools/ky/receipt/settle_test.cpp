#include "tools/ky/receipt/settle.h"

#include <gtest/gtest.h>

#include "platform/machine/document.h"

namespace receipt {
namespace {

using host::TargetKind;

machine::State machine_of(const std::string& members) {
  return machine::read_document(R"({"format": "ky-machine", "version": 1, )" + members + "}", "m.json");
}

constexpr const char* profiles = R"("registry": [
  {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-1",
   "values": {"ProfileImagePath": {"expandable": "%SystemDrive%\\Users\\one"}}},
  {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-2",
   "values": {"ProfileImagePath": "C:\\Users\\two"}},
  {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-3",
   "values": {"ProfileImagePath": "C:\\Users\\three"}}, )";

std::vector<std::wstring> lines_of(const Receipt& receipt) {
  std::vector<std::wstring> lines;
  for (const Row& row : receipt.rows) {
    const std::string state = to_text(row.state);
    lines.push_back(row.target.path + L": " + std::wstring(state.begin(), state.end()) +
                    (row.reason.empty() ? L"" : L", " + row.reason));
  }
  return lines;
}

TEST(Settling, EachUserHasALineWhereverTheHiveIs) {
  const auto files = [](const std::string& second) {
    return R"("files": [
      {"path": "C:\\Users\\one\\NTUSER.DAT", "open": [{"access": ["read", "write"]}], "attributes": ["read_only"],
       "hive": [{"key": "Software\\Gone"}]},
      {"path": "C:\\Users\\two\\NTUSER.DAT", )" +
           second + R"(},
      {"path": "C:\\Users\\three\\NTUSER.DAT", "text": "no hive"}])";
  };
  const std::string before = R"({"key": "HKEY_USERS\\S-1-5-21-9\\Software\\Gone"},
    {"key": "HKEY_USERS\\S-1-5-21-9_Classes\\Software\\Gone"}], )" +
                             files(R"("hive": [{"key": "Software\\Gone"}])");
  // The run mounted the second user's hive, and left it mounted.
  const std::string after = R"({"key": "HKEY_USERS\\S-1-5-21-9\\Software"},
    {"key": "HKEY_USERS\\S-1-5-21-2__ky_setup__\\Software"}], )" +
                            files(R"("hive": [], "mounted": "HKEY_USERS\\S-1-5-21-2__ky_setup__")");
  Account account;
  account.named.things = {
      {{TargetKind::registry_key, L"HKEY_USERS\\*\\Software\\Gone"}, {{1, "DeleteRegKey", true, true, 5}}}};
  account.actions = {{"hive-mounted", L"HKEY_USERS\\S-1-5-21-2__ky_setup__ from C:\\Users\\two\\NTUSER.DAT"}};
  const Receipt receipt = settle(account, machine_of(profiles + before), machine_of(profiles + after));
  EXPECT_EQ(lines_of(receipt), (std::vector<std::wstring>{
                                   L"HKEY_USERS\\S-1-5-21-1\\Software\\Gone: still-there, its command ran; the user's "
                                   L"hive was not mounted",
                                   L"HKEY_USERS\\S-1-5-21-2\\Software\\Gone: removed-now",
                                   L"HKEY_USERS\\S-1-5-21-9\\Software\\Gone: removed-now"}));
}

TEST(Settling, ThingsOfEveryKindAreFoundWhereTheyAre) {
  const std::wstring half(200, L'a');  // of a path that is too long for most commands
  const std::string members = R"(
    "environment": {"parent": {"image": "C:\\P\\bundle.exe"}, "wow64": true},
    "files": [{"path": "C:\\P\\Sealed.exe"}, {"path": "C:\\P\\bundle.exe"}, {"path": "C:\\T\\m.tmp"},
              {"path": "C:\\Windows\\System32\\DriverStore\\FileRepository\\alone_1\\alone.inf"},
              {"path": "C:\\)" +
                              std::string(200, 'a') + R"(\\)" + std::string(200, 'a') + R"("},
              {"path": "C:\\Windows\\INF\\oem7.inf", "store": "C:\\Store\\x_1\\Flt.inf"},
              {"path": "C:\\link", "link": {"junction": "C:\\absent"}}],
    "processes": [{"image": "C:\\P\\Sealed.exe"}, {"image": "C:\\T\\m.tmp", "name": "Again.exe"}],
    "registry": [{"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\S", "values": {"": "d"}},
                 {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\.ky"}],
    "task_scheduler": {"tasks": [{"path": "\\Update"}]})";
  const struct {
    Target target;
    bool there;
  } rows[] = {
      {{TargetKind::folder, L"C:\\P\\"}, true},
      {{TargetKind::file, L"c:/p/sealed.EXE"}, true},
      {{TargetKind::file, L"C:\\P\\*.exe"}, false},
      {{TargetKind::folder, L"C:\\link"}, true},
      {{TargetKind::registry_key, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\S"}, true},
      {{TargetKind::registry_key, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\S", L"", true}, false},
      {{TargetKind::registry_value, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\S", L""}, true},
      {{TargetKind::registry_value, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\S", L"other"}, false},
      {{TargetKind::registry_key, L"HKEY_CLASSES_ROOT\\.ky"}, true},
      {{TargetKind::task, L"update"}, true},
      {{TargetKind::task, L"Other"}, false},
      {{TargetKind::driver_package, L"flt.INF"}, true},
      {{TargetKind::driver_package, L"oem7.inf"}, false},
      {{TargetKind::driver_package, L"alone.inf"}, true},
      {{TargetKind::file, L"C:\\" + half + L"\\" + half}, true},
      {{TargetKind::process_file, L"C:\\P\\sealed.exe"}, true},
      {{TargetKind::process_file, L"C:\\P\\again.exe"}, true},
      {{TargetKind::process_name, L"Seal"}, true},
      {{TargetKind::process_name, L"seal"}, false},
      {{TargetKind::process_name, L"bundle"}, true},
  };
  Account account;
  account.moves = {{L"C:\\P\\Again.exe", L"C:\\T\\m.tmp"}};
  for (const auto& row : rows) account.named.things.push_back({row.target, {{1, "X", true, true}}});
  const Receipt receipt = settle(account, machine_of(members), machine_of(members));
  ASSERT_EQ(receipt.rows.size(), std::size(rows));
  for (std::size_t at = 0; at < std::size(rows); ++at) {
    EXPECT_EQ(receipt.rows[at].state == State::still_there, rows[at].there)
        << testing::PrintToString(rows[at].target.path);
  }
}

}  // namespace
}  // namespace receipt
