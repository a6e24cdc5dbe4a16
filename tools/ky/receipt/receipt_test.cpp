#include "tools/ky/receipt/receipt.h"

#include <gtest/gtest.h>

#include "tools/ky/receipt/receipt_json.h"

namespace receipt {
namespace {

using host::TargetKind;

const NamingCommand ran{4, "DeleteFile", true, true, 0};
const NamingCommand refused{5, "DeleteFolder", true, true, 87};
const NamingCommand skipped{6, "DeleteFile", true, false, 0};
const NamingCommand unreached{7, "DeleteFile"};

Evidence evidence() {
  Evidence seen;
  seen.deletions = {
      {"file", L"C:\\A\\held.dll", 32, false},  {"folder", L"C:\\A", 145, false},
      {"file", L"C:\\A\\gone.txt", 0, true},    {"file", L"C:\\came.txt", 0, true},
      {"folder", L"C:\\full", 145, false},      {"file", L"C:\\again.txt", 0, false},
      {"file", L"C:\\B\\booked.dll", 5, false}, {"registry-key", L"HKEY_LOCAL_MACHINE\\A\\B", 5, false},
      {"task", L"\\Update", 5, false},          {"registry-value", L"HKEY_USERS\\u\\A\\(default)", 5, false}};
  seen.deletions.push_back({"registry-value", L"HKEY_USERS\\u\\Run", 0, true});
  seen.moves = {{L"C:\\moved.exe", L"C:\\Temp\\m.tmp"}, {L"C:\\C\\deep.exe", L"C:\\Temp\\d.tmp"}};
  seen.booked = {L"C:\\Temp\\m.tmp", L"C:\\B\\booked.dll"};
  seen.closings = {{L"Quit.exe", L"C:\\P\\Quit.exe", false, L"", 0},
                   {L"Sealed.exe", L"C:\\P\\Sealed.exe", true, L"it cannot be opened", 5}};
  seen.message = [](ports::ErrorCode code) { return code == 32 ? L"In use.\r\n" : L""; };
  return seen;
}

TEST(Receipt, EachThingIsRemovedNowOrWasAbsentOrIsStillThereForAReason) {
  const struct {
    Thing thing;
    State state;
    const wchar_t* reason;
    ports::ErrorCode code;
  } rows[] = {
      {{{TargetKind::file, L"c:\\a\\GONE.txt"}, true, false, L"", {ran}}, State::removed_now, L"", 0},
      {{{TargetKind::file, L"C:\\came.txt"}, false, false, L"", {ran}}, State::removed_now, L"", 0},
      {{{TargetKind::file, L"C:\\never.txt"}, false, false, L"", {ran}}, State::already_absent, L"", 0},
      {{{TargetKind::file, L"C:\\moved.exe"}, true, false, L"", {ran}},
       State::removed_now,
       L"moved to 'C:\\Temp\\m.tmp', which is booked for the next start",
       0},
      {{{TargetKind::folder, L"C:\\C\\"}, true, false, L"", {ran}},
       State::removed_now,
       L"'C:\\C\\deep.exe' moved to 'C:\\Temp\\d.tmp', which stays",
       0},
      {{{TargetKind::file, L"C:\\A\\held.dll"}, true, true, L"", {ran}}, State::still_there, L"error 32, In use", 32},
      {{{TargetKind::folder, L"C:\\A\\"}, true, true, L"", {ran}},
       State::still_there,
       L"'C:\\A\\held.dll' stays: error 32, In use",
       32},
      {{{TargetKind::folder, L"C:\\\\full\\"}, true, true, L"", {ran}}, State::still_there, L"error 145", 145},
      {{{TargetKind::file, L"C:\\again.txt"}, true, true, L"", {ran}},
       State::still_there,
       L"deleted, and there again or still held",
       0},
      {{{TargetKind::file, L"C:\\B\\booked.dll"}, true, true, L"", {ran}},
       State::still_there,
       L"booked for the next start",
       0},
      {{{TargetKind::folder, L"C:\\B"}, true, true, L"", {ran}},
       State::still_there,
       L"'C:\\B\\booked.dll' is booked for the next start",
       0},
      {{{TargetKind::registry_key, L"HKEY_LOCAL_MACHINE\\A"}, true, true, L"", {ran}},
       State::still_there,
       L"'HKEY_LOCAL_MACHINE\\A\\B' stays: error 5",
       5},
      {{{TargetKind::registry_value, L"HKEY_USERS\\u\\A"}, true, true, L"", {ran}}, State::still_there, L"error 5", 5},
      {{{TargetKind::registry_key, L"HKEY_USERS\\u\\Run"}, false, false, L"", {ran}}, State::already_absent, L"", 0},
      {{{TargetKind::task, L"Update"}, true, true, L"", {ran}}, State::still_there, L"error 5", 5},
      {{{TargetKind::process_file, L"C:\\P\\Sealed.exe"}, true, true, L"it runs", {ran}},
       State::still_there,
       L"it cannot be opened (error 5)",
       5},
      {{{TargetKind::process_name, L"Sea"}, true, true, L"it runs", {ran}},
       State::still_there,
       L"it cannot be opened (error 5)",
       5},
      {{{TargetKind::process_file, L"C:\\P\\quit.exe"}, false, false, L"", {ran}}, State::removed_now, L"", 0},
      // Nothing was tried: how far its commands came.
      {{{TargetKind::folder, L"C:\\"}, true, true, L"", {unreached, refused}},
       State::still_there,
       L"its command gave error 87",
       87},
      {{{TargetKind::file, L"C:\\x"}, true, true, L"", {unreached, skipped}},
       State::still_there,
       L"its command was skipped",
       0},
      {{{TargetKind::file, L"C:\\x"}, true, true, L"", {unreached}},
       State::still_there,
       L"the run never came to its command",
       0},
      {{{TargetKind::driver_package, L"b.inf"}, true, true, L"", {ran}},
       State::still_there,
       L"its command ran and noted no failure",
       0},
      {{{TargetKind::driver_package, L"a.inf"}, true, true, L"it is in the store", {ran}},
       State::still_there,
       L"its command ran; it is in the store",
       0},
  };
  const Findings findings(evidence());
  for (const auto& row : rows) {
    const Row found = findings.decide(row.thing);
    EXPECT_STREQ(to_text(found.state), to_text(row.state)) << testing::PrintToString(row.thing.target.path);
    EXPECT_EQ(found.reason, row.reason);
    EXPECT_EQ(found.code, row.code) << testing::PrintToString(found.reason);
  }
}

TEST(Receipt, ItsJsonIsAsItIsPublished) {
  Receipt receipt;
  const Findings findings(evidence());
  receipt.rows = {findings.decide({{TargetKind::file, L"C:\\A\\held.dll"}, true, true, L"", {ran, skipped}}),
                  findings.decide({{TargetKind::registry_value, L"HKEY_USERS\\u", L"V"}, false, false, L"", {ran}})};
  receipt.not_named = {{9, "DeleteFile", {"pathFile", L"[X]\\a", L"[X] is never set"}}};
  EXPECT_EQ(to_json(receipt), R"({
  "counts": {
    "already-absent": 1,
    "not-named": 1,
    "removed-now": 0,
    "still-there": 1
  },
  "format": "ky-receipt",
  "notNamed": [
    {
      "attribute": "pathFile",
      "command": "DeleteFile",
      "index": 9,
      "reason": "[X] is never set",
      "text": "[X]\\a"
    }
  ],
  "things": [
    {
      "code": 32,
      "commands": [
        4,
        6
      ],
      "kind": "file",
      "path": "C:\\A\\held.dll",
      "reason": "error 32, In use",
      "state": "still-there"
    },
    {
      "code": 0,
      "commands": [
        4
      ],
      "kind": "registry-value",
      "path": "HKEY_USERS\\u",
      "reason": null,
      "state": "already-absent",
      "value": "V"
    }
  ],
  "version": 1
}
)");
}

}  // namespace
}  // namespace receipt
