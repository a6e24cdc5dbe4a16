#include "platform/machine/document.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/machine/machine.h"
#include "tests/support/named_world.h"
#include "tests/support/refusal_of.h"

namespace machine {
namespace {

using support::NamedWorld;

[[nodiscard]] std::string with(const std::string& members) {
  return R"({"format": "ky-machine", "version": 1)" + (members.empty() ? "" : ", " + members) + "}";
}

[[nodiscard]] std::string complaint(const std::string& text) {
  return support::refusal_of([&] { return read_document(text, "m.json"); });
}

TEST(Document, ABadOneIsRefusedWithFilePlaceAndReason) {
  const struct {
    std::string text;
    const char* complaint;
  } rows[] = {
      {"", "m.json:1: the text is not JSON"},
      {"{\n\"format\": }", "m.json:2: the text is not JSON"},
      {with("") + "x", "m.json:1: the text is not JSON"},
      {std::string("\xFF\xFE{\0", 4), "m.json:1: the text is not UTF-8"},
      {"{\"a\":\n\"\xC3\"}", "m.json:2: the text is not UTF-8"},
      {R"({"format": 1, "format": 2})", "m.json:1: the member \"format\" stands there twice"},
      {R"({"format": "ky-machine", "version": 1e999})",
       "m.json: version: a whole number from 0 to 4294967295 is wanted here"},
      {std::string(100000, '['), "m.json:1: the document is nested too deeply"},
      {"[]", "m.json: an object is wanted here"},
      {"{}", "m.json: the member \"format\" is missing"},
      {R"({"format": "other"})", "m.json: format: this is no machine file"},
      {R"({"format": "ky-machine", "version": 2})", "m.json: version: version 2 is not known, only 1"},
      {with(R"("file": [])"), "m.json: unknown member \"file\""},
      {with(R"("files": {})"), "m.json: files: an array is wanted here"},
      {with(R"("files": [{"path": "C:\\a", "colour": 1}])"), "m.json: files[0]: unknown member \"colour\""},
      {with(R"("files": [{"text": "x"}])"), "m.json: files[0]: the member \"path\" is missing"},
      {with(R"("files": [{"path": "a\\b"}])"),
       "m.json: files[0].path: a full path is wanted here, as \"C:\\Folder\\file.txt\""},
      {with(R"("files": [{"path": "C:\\a\\..\\b"}])"),
       "m.json: files[0].path: a full path is wanted here, as \"C:\\Folder\\file.txt\""},
      {with(R"("files": [{"path": "Q:\\a"}])"), "m.json: files[0].path: there is no such drive"},
      {with(R"("files": [{"path": "C:\\a"}, {"path": "C:\\A"}])"),
       "m.json: files[1].path: this path stands there twice"},
      {with(R"("files": [{"path": "C:\\a"}, {"path": "C:\\a\\b"}])"),
       "m.json: files[1].path: a file or link stands where a folder is wanted"},
      {with(R"("files": [{"path": "C:\\a\\b"}, {"path": "C:\\a"}])"),
       "m.json: files[1].path: other files lie below this path"},
      {with(R"("files": [{"path": "C:\\a", "size": -1}])"),
       "m.json: files[0].size: a whole number from 0 to 9007199254740992 is wanted here"},
      {with(R"("files": [{"path": "C:\\a", "base64": "x"}])"), "m.json: files[0].base64: this is not base64"},
      {with(R"("files": [{"path": "C:\\a", "folder": true, "text": ""}])"),
       "m.json: files[0]: a folder has no content"},
      {with(R"("files": [{"path": "C:\\a", "attributes": ["blue"]}])"),
       "m.json: files[0].attributes[0]: \"blue\" is not known here"},
      {with(R"("files": [{"path": "C:\\a", "same_as": "C:\\b"}])"), "m.json: files[0].same_as: there is no such file"},
      {with(R"("files": [{"path": "C:\\a", "deleting": true}])"),
       "m.json: files[0]: what is \"deleting\" is held \"open\" by somebody"},
      {with(R"("files": [{"path": "C:\\a", "hive": [], "size": 5}])"),
       "m.json: files[0]: \"hive\" is the whole content"},
      {with(R"("files": [{"path": "C:\\a", "hive": [{"key": "A"}, {"key": "a"}]}])"),
       "m.json: files[0].hive[1].key: this key stands there twice"},
      {with(R"("files": [{"path": "C:\\a", "hive": [{"key": "\\A"}]}])"),
       "m.json: files[0].hive[0].key: a key's path below the hive's root is wanted here, as \"Software\\Name\""},
      {with(R"("files": [{"path": "C:\\a", "text": "x", "mounted": "HKEY_USERS\\a"}])"),
       "m.json: files[0]: what is \"mounted\" is a \"hive\""},
      {with(R"("files": [{"path": "C:\\a", "hive": [], "mounted": "HKEY_USERS\\a\\b"}])"),
       "m.json: files[0].mounted: a hive is mounted right below a root"},
      {with(R"("task_scheduler": {"tasks": [{"path": "Name"}]})"),
       "m.json: task_scheduler.tasks[0].path: a task's path is wanted here, as \"\\Folder\\Name\""},
      {with(R"("task_scheduler": {"tasks": [{"path": "\\a"}, {"path": "\\A"}]})"),
       "m.json: task_scheduler.tasks[1].path: this task stands there twice"},
      {with(R"("registry": [{"key": "HKCU\\Software"}])"),
       "m.json: registry[0].key: a key's path is wanted here, as \"HKEY_LOCAL_MACHINE\\SOFTWARE\\Name\""},
      {with(R"("registry": [{"key": "HKEY_USERS\\a", "values": {"v": true}}])"),
       "m.json: registry[0].values.v: a text, a number, a list or an object is wanted here"},
      {with(R"("registry": [{"key": "HKEY_USERS\\a", "values": {"v": 1, "V": 2}}])"),
       "m.json: registry[0].values.v: this value stands there twice"},
      {with(R"("registry": [{"key": "HKEY_USERS\\a", "values": {"v": {"number64": "1x"}}}])"),
       "m.json: registry[0].values.v.number64: a number in decimal digits is wanted here, as a text"},
      {with(R"("programs": [{"image": "a.exe", "effects": [{}]}])"),
       "m.json: programs[0].effects[0]: an effect is wanted here, as {\"delete_file\": \"C:\\\\file.txt\"}"},
      {with(R"("programs": [{"image": "a.exe", "arguments": "x"}, {"image": "A.exe", "arguments": "x"}])"),
       "m.json: programs[1].image: this program stands there twice"},
      {with(R"("processes": [{"image": "C:\\a.exe"}])"), "m.json: processes[0].image: there is no such file"},
      {with(R"("processes": [{"image": "C:\\a.exe", "id": 9}])"), "m.json: processes[0].id: ids are multiples of 4"},
      {with(R"("processes": [{"image": "C:\\a.exe", "refuses": ["love"]}])"),
       "m.json: processes[0].refuses[0]: \"love\" is not known here"},
      {with(R"("processes": [{"image": "C:\\a.exe", "gives_way": {"after": "open", "to": {"id": 8}}}])"),
       "m.json: processes[0].gives_way.to.id: the id of this process is not free to choose"},
      {with(R"("files": [{"path": "C:\\a"}], "processes": [{"id": 8, "image": "C:\\a"}, {"id": 8, "image": "C:\\a"}])"),
       "m.json: processes[1].id: this id stands there twice"},
      {with(R"("clock": {"now": "2024-02-30T00:00:00.000Z"}})"), "m.json:1: the text is not JSON"},
      {with(R"("clock": {"now": "2023-02-29T00:00:00.000Z"})"),
       "m.json: clock.now: a moment in UTC is wanted here, as \"2024-05-14T07:30:00.000Z\""},
      {with(R"("environment": {"elevated": "yes"})"), "m.json: environment.elevated: true or false is wanted here"},
      {with(R"("drives": {"C:": {"device": "\\Device\\HarddiskVolume2"}, "D:": {}})"),
       "m.json: drives: two drives have the same device"},
      {with(R"("drives": {"C:": {"device": "C"}})"),
       "m.json: drives.C:.device: a device is wanted here, as \"\\Device\\HarddiskVolume1\""},
      {with(R"("drives": {"S:": {"substitute": "D:\\a"}})"), "m.json: drives.S:.substitute: there is no such drive"},
      {with(R"("drives": {"C:": {}, "S:": {"substitute": "C:\\a"}}, "files": [{"path": "S:\\a"}])"),
       "m.json: files[0].path: the files of a substitute lie on another drive"},
      {with(R"("files": [{"path": "C:\\a", "case_sensitive": true}])"),
       "m.json: files[0]: only a folder is \"case_sensitive\""},
      {with(R"("files": [{"path": "C:\\a.html", "short_name": "A~1.HTML"}])"),
       "m.json: files[0].short_name: a short name is wanted here, as \"PROGRA~1\" or \"README~1.TXT\""},
      {with(R"("files": [{"path": "C:\\a.html", "short_name": "b"}, {"path": "C:\\B"}])"),
       "m.json: files[0].short_name: this name is taken in the folder"},
      {with(R"("files": [{"path": "C:\\a", "signature": {"subject": "x", "trust": "odd"}}])"),
       "m.json: files[0].signature.trust: \"odd\" is not known here"},
      {with(R"("files": [{"path": "C:\\a", "signature": {"subject": "x", "serial": "123"}}])"),
       "m.json: files[0].signature.serial: pairs of the digits 0 to 9 and a to f are wanted here"},
      {with(R"("environment": {"privileges": ["SeOdd"]})"),
       "m.json: environment.privileges[0]: a privilege is wanted here, as \"SeDebugPrivilege\""},
      {with(R"("drives": {"c:": {}})"), "m.json: drives.c:: a drive is named as \"C:\""},
      {with(R"("pending_moves": [{"from": "C:\\a", "replace": true}])"),
       "m.json: pending_moves[0]: what is deleted replaces nothing"},
  };
  for (const auto& row : rows) EXPECT_EQ(complaint(row.text), row.complaint);
}

TEST(Document, SaysItAllAndComesBackTheSame) {
  const std::string text = with(R"(
    "clock": {"now": "2024-02-29T23:59:59.999Z", "offset_minutes": -330, "ticks": 4294967295},
    "counters": {"id": 400, "temporary_file": 65535},
    "drives": {"C:": {"serial": 1, "free": 100}, "E:": {"identities": false, "case_query": false},
      "F:": {"device": "\\Device\\HarddiskVolume10"}, "S:": {"substitute": "C:\\T"}},
    "environment": {"temp": "C:\\T", "user": "S-1", "desktop": false, "command_line": "a \"b\"", "wow64": true,
      "parent": {"image": "C:\\T\\c.exe", "command_line": "c /silent"},
      "privileges": ["SeRestorePrivilege"]},
    "files": [
      {"path": "C:\\T", "folder": true, "attributes": ["hidden"]},
      {"path": "C:\\T\\a.txt", "text": "\u00e4\n", "attributes": []},
      {"path": "C:\\T\\b.bin", "base64": "AP8=", "size": 1000, "protected": true},
      {"path": "C:\\T\\c.exe", "size": 9007199254740992, "running": true},
      {"path": "C:\\T\\other name", "same_as": "C:\\T\\c.exe"},
      {"path": "C:\\T\\held", "open": [{"access": ["read"], "share": ["delete"]}], "deleting": true},
      {"path": "C:\\T\\n.dat", "hive": [{"key": "", "values": {"v": 1}}, {"key": "S\\B", "protected": true},
        {"key": "S", "values": {"e": {"expandable": "%x%"}}}, {"key": "L", "link": "\\Registry\\User\\x"}],
        "mounted": "HKEY_USERS\\S-2"},
      {"path": "C:\\T\\oem1.inf", "text": "x", "store": "C:\\T\\p\\p.inf"},
      {"path": "C:\\T\\cs\\Sub\\x"}, {"path": "C:\\T\\cs\\sub\\X", "size": 3},
      {"path": "C:\\T\\cs\\sub", "case_sensitive": true, "folder": true, "short_name": "SUB~1"},
      {"path": "C:\\T\\cs", "case_sensitive": true, "folder": true},
      {"path": "C:\\T\\cs\\sub\\x", "same_as": "C:\\T\\b.bin", "short_name": "X~1.BIN"},
      {"path": "C:\\T\\s1", "signature": {"subject": "a", "issuer": "b", "serial": "00ff", "trust": "tampered"}},
      {"path": "C:\\T\\s2", "signature": {"subject": "a", "trust": 2148098057, "certificate": false}},
      {"path": "E:\\link", "link": {"symbolic": "..\\x"}, "folder": true},
      {"path": "E:\\way", "link": {"junction": "C:\\T"}},
      {"path": "E:\\name. ", "size": 0}],
    "processes": [
      {"id": 400, "image": "C:\\T\\c.exe", "name": "d.exe", "command_line": "", "current_folder": "C:", "hangs": true,
        "spawns": "c.exe /x", "refuses": ["query", "synchronize"], "needs_debug_privilege": true, "ends_after": 0},
      {"image": "C:\\T\\other name", "parent": 400, "closes_after": 5, "unreadable": ["parameters"], "wow64": true,
        "gives_way": {"after": "image_path", "to": {"image": "C:\\T\\c.exe", "gives_way":
          {"after": "open", "to": {"image": "C:\\T\\c.exe"}}}}}],
    "pending_moves": [{"from": "C:\\x", "to": "C:\\y", "replace": true}, {"from": "C:\\T\\a.txt"}],
    "programs": [{"image": "c.exe", "stays": true}, {"image": "c.exe", "runs": 500, "exit_code": 4294967295, "refused": true, "needs_elevation": true,
      "arguments": "/quit", "hangs": true,
      "effects": [{"ask_to_close": "c.exe"}, {"end_process": "C:\\T\\c.exe"}, {"delete_file": "C:\\T\\a.txt"}, {"write_file": "C:\\T\\n", "text": "x"},
        {"set_value": "HKEY_USERS\\S-1\\A", "name": "n", "value": 3}, {"delete_value": "HKEY_USERS\\S-1\\A"}, {"remove_driver": true}]}],
    "task_scheduler": {"running": false, "tasks": [{"path": "\\A b\\C", "protected": true}, {"path": "\\D"}]},
    "registry": [
      {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\A", "volatile": true, "values": {"": "text", "e": {"expandable": "%x%"},
        "n": 4294967295, "l": ["a", "b"], "none": [], "q": {"number64": "18446744073709551615"},
        "b": {"binary": ""}, "raw": {"type": 1, "bytes": "YQA="}}},
      {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\A\\Sub", "protected": true},
      {"key": "HKEY_USERS\\S-1\\Link", "link": "\\Registry\\Machine\\SOFTWARE\\A"}])");
  const std::string written = write_document(read_document(text, "m.json"));
  EXPECT_EQ(write_document(read_document(written, "m.json")), written);
  for (const char* piece : {"\"now\": \"2024-02-29T23:59:59.999Z\"",
                            "\"offset_minutes\": -330",
                            "\"same_as\": \"C:\\\\T\\\\c.exe\"",
                            "\"path\": \"E:\\\\name. \"",
                            "\"size\": 9007199254740992",
                            "\"number64\": \"18446744073709551615\"",
                            "\"bytes\": \"YQA=\"",
                            "\"none\": []",
                            "\"deleting\": true",
                            "\"expandable\": \"%x%\"",
                            "\"free\": 100",
                            "\"key\": \"S\\\\B\"",
                            "\"mounted\": \"HKEY_USERS\\\\S-2\"",
                            "\"store\": \"C:\\\\T\\\\p\\\\p.inf\"",
                            "\"path\": \"\\\\A b\\\\C\"",
                            "\"remove_driver\": true",
                            "\"running\": false",
                            "\"path\": \"C:\\\\T\\\\cs\\\\sub\\\\X\"",
                            "\"short_name\": \"X~1.BIN\"",
                            "\"serial\": \"00ff\"",
                            "\"trust\": \"tampered\"",
                            "\"trust\": 2148098057",
                            "\"substitute\": \"C:\\\\T\"",
                            "SeRestorePrivilege"}) {
    EXPECT_NE(written.find(piece), std::string::npos) << piece;
  }
}

TEST(Document, ClockAndCountersGoOn) {
  const auto machine = NamedWorld().program(L"C:\\p.exe", 1500, 0).make();
  ports::CreatedProcess process;
  ASSERT_TRUE(machine->processes().create(L"C:\\p.exe", nullptr, 0, process));
  machine->threads().sleep(61'500);
  const auto next = Machine::from_json(machine->to_json(), "next.json");
  EXPECT_EQ(next->clock().ticks(), machine->clock().ticks());
  EXPECT_EQ(next->clock().seconds_since_1970(), machine->clock().seconds_since_1970());
  EXPECT_GT(next->processes().current_id(), process.thread_id);
}

TEST(Document, WhatThisProcessHoldsIsLeftOut) {
  const auto machine = NamedWorld().file(L"C:\\a").program(L"C:\\p.exe", 1500, 0).make();
  const std::string before = machine->to_json();
  const ports::Handle file =
      machine->files().open(L"C:\\a", ports::file_access::erase, 0, ports::Disposition::open_existing, 0);
  ports::Handle process = ports::Handle::null;
  ASSERT_TRUE(machine->processes().shell_execute({nullptr, L"C:\\p.exe"}, process));
  const State during = machine->state();
  machine->change([](State& state) { state.started.clear(); });
  const State loaded = read_document(write_document(during), "m.json");
  for (const auto& [id, node] : loaded.files.nodes) EXPECT_TRUE(node.holds.empty());
  EXPECT_EQ(write_document(loaded).find("\"running\": true"), before.find("\"running\": true"));
  EXPECT_TRUE(machine->waits().close(file));
}

}  // namespace
}  // namespace machine
