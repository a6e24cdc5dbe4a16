// A rehearsal that is cut off while hives are mounted, and the next one on the machine that it left.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/desk/desk.h"
#include "platform/machine/machine.h"
#include "tests/scenario/programs.h"

namespace scenario {
namespace {

constexpr const char* script = R"(<install version="1.0"><commands>
<RegLoadAllUserHives/>
<DeleteRegKey base="HKEY_USERS" subkey="*\Software\Gone" recursive="1"/>
<RegUnloadPreviouslyLoadedUserHives/>
</commands></install>)";

constexpr const char* two_users = R"({"format": "ky-machine", "version": 1,
"files": [
  {"path": "C:\\Windows\\Temp", "folder": true},
  {"path": "C:\\Users\\one\\NTUSER.DAT", "hive": [{"key": "Software\\Gone\\A"}, {"key": "Software\\Kept"}]},
  {"path": "C:\\Users\\two\\NTUSER.DAT", "hive": [{"key": "Software\\Gone\\B"}, {"key": "Software\\Kept"}]}],
"registry": [
  {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-1-2-3-1",
   "values": {"ProfileImagePath": "C:\\Users\\one"}},
  {"key": "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-1-2-3-2",
   "values": {"ProfileImagePath": "C:\\Users\\two"}}]})";

/// How many hives with the marker are mounted, and how many keys named Gone and Kept the document has anywhere.
struct Found {
  std::ptrdiff_t mounted = 0;
  std::size_t gone = 0;
  std::size_t kept = 0;
};

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t found = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++found;
  return found;
}

Found look(const std::string& document) {
  const machine::State state = machine::Machine::from_json(document, "left")->state();
  const auto& users = state.registry.keys.at(state.registry.users).subkeys;
  const auto marked = [](const auto& entry) { return entry.first.find(L"__ky_setup__") != std::wstring::npos; };
  return {std::count_if(users.begin(), users.end(), marked), count(document, "Software\\\\Gone"),
          count(document, "Software\\\\Kept")};
}

TEST(CutOffHives, AreUnmountedByTheNextRun) {
  const std::string out = output_folder("cut-off-hives");
  const std::string file = desk::join(out, "script.xml");
  const std::string left = desk::join(out, "left.json");
  ASSERT_EQ(desk::write_file(file, script), "");
  const auto rehearse = [&](const std::string& machine, const char* steps) {
    ASSERT_EQ(desk::write_file(left, machine), "");
    const int code = run_program(desk_path(KY_PROGRAM),
                                 {"rehearse", "--machine", left, "--script", file, "--out", out, "--max-steps", steps});
    EXPECT_EQ(code == 0, steps[0] == '9') << code;
  };
  for (const char* const steps : {"1", "2"}) {
    rehearse(two_users, steps);
    const std::string cut = read_text(desk::join(out, "machine.json"));
    EXPECT_EQ(look(cut).mounted, 2) << steps;
    rehearse(cut, "9");
    const Found after = look(read_text(desk::join(out, "machine.json")));
    EXPECT_EQ(after.mounted, 0) << steps;
    EXPECT_EQ(after.gone, 0U) << steps;
    EXPECT_EQ(after.kept, 2U) << steps;
  }
}

}  // namespace
}  // namespace scenario
