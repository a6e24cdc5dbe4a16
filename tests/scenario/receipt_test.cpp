// A run that could not remove everything, and the receipt that says so.
#include <gtest/gtest.h>
#include <picojson.h>

#include <map>

#include "platform/desk/desk.h"
#include "tests/scenario/programs.h"

namespace scenario {
namespace {

constexpr const char* script = R"(<install version="1.0"><commands>
<SetVariable var="Suite" strValue="C:\Suite\"/>
<CloseProcesses maxTimeout="500" process1="Sealed.exe" cmd1="" currentDir1="[Suite]"
                                 process2="Tool.exe" cmd2="" currentDir2="[Suite]"/>
<Jump condition="Held" value="0" target="#files"/>
<DeleteFile pathFile="C:\elsewhere.txt"/>
<RemoveScheduledTask id="files" name="Guarded"/>
<DeleteFolder path="[Suite]" recursive="1"/>
<DeleteFile pathFile="[Suite]Sealed.exe"/>
<RegLoadAllUserHives/>
<DeleteRegKey base="HKEY_USERS" subkey="*\Software\Gone" recursive="1"/>
<RegUnloadPreviouslyLoadedUserHives/>
<DeleteFile pathFile="[Never]\a"/>
</commands></install>)";

constexpr const char* held_machine = R"({"format": "ky-machine", "version": 1,
"files": [
  {"path": "C:\\Windows\\Temp", "folder": true},
  {"path": "C:\\elsewhere.txt"},
  {"path": "C:\\Suite\\held.dll", "open": [{"access": ["read"]}]},
  {"path": "C:\\Suite\\free.dll"},
  {"path": "C:\\Suite\\Sealed.exe"},
  {"path": "C:\\Suite\\Tool.exe"},
  {"path": "C:\\Users\\one\\NTUSER.DAT", "hive": [{"key": "Software\\Gone\\A"}]}],
"processes": [{"image": "C:\\Suite\\Sealed.exe", "refuses": ["query", "terminate", "synchronize"]},
              {"image": "C:\\Suite\\Tool.exe"}],
"task_scheduler": {"tasks": [{"path": "\\Guarded", "protected": true}]},
"registry": [
  {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-1-2-3-1",
   "values": {"ProfileImagePath": "C:\\Users\\one"}}]})";

TEST(Receipt, NamesAHeldFileAndASealedProcessAndMakesTheExitCode3) {
  const std::string out = output_folder("receipt");
  const std::string machine = desk::join(out, "held.json");
  const std::string file = desk::join(out, "script.xml");
  const std::string written = desk::join(out, "receipt.json");
  ASSERT_EQ(desk::write_file(machine, held_machine), "");
  ASSERT_EQ(desk::write_file(file, script), "");
  EXPECT_EQ(
      run_program(desk_path(KY_PROGRAM), {"rehearse", "--machine", machine, "--script", file, "--receipt", written}),
      3);
  EXPECT_EQ(
      run_program(desk_path(KY_PROGRAM), {"rehearse", "--machine", machine, "--receipt", desk::join(out, "held.json")}),
      1);
  EXPECT_EQ(read_text(machine), held_machine);
  picojson::value receipt;
  ASSERT_EQ(picojson::parse(receipt, read_text(written)), "");
  std::map<std::string, std::string> lines;
  for (const picojson::value& thing : receipt.get("things").get<picojson::array>()) {
    const picojson::value& reason = thing.get("reason");
    lines[thing.get("kind").to_str() + " " + thing.get("path").to_str()] =
        thing.get("state").to_str() + (reason.is<picojson::null>() ? "" : ": " + reason.to_str());
  }
  const std::map<std::string, std::string> expected = {
      {"process C:\\Suite\\Sealed.exe", "still-there: "},
      {"process C:\\Suite\\Tool.exe", "removed-now"},
      {"file C:\\elsewhere.txt", "still-there: the run never came to its command"},
      {"task Guarded", "still-there: error 5, Access is denied"},
      {"folder C:\\Suite\\",
       "still-there: 'C:\\Suite\\held.dll' stays: error 32, The process cannot access the file "
       "because it is being used by another process"},
      {"file C:\\Suite\\Sealed.exe", "still-there: error 5, Access is denied"},
      {"registry-key HKEY_USERS\\S-1-5-21-1-2-3-1\\Software\\Gone", "removed-now"},
  };
  for (const auto& [name, line] : expected) EXPECT_EQ(lines[name].substr(0, line.size()), line) << name;
  EXPECT_EQ(lines.size(), expected.size());
  EXPECT_EQ(receipt.get("notNamed").get(0).get("reason").to_str(), "[Never] is never set");
}

}  // namespace
}  // namespace scenario
