// Runs for real, held against rehearsals of the same.
#include <gtest/gtest.h>

#include <picojson.h>

#include <algorithm>
#include <memory>
#include <sstream>

#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/desk.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "platform/ports/files.h"
#include "tests/contract/real_layout.h"
#include "tests/scenario/laid_out.h"
#include "tests/scenario/programs.h"
#include "tests/scenario/samples.h"
#include "tests/support/temporary_folder.h"

namespace scenario {
namespace {

const ports::System& real() {
  return *ports::real_system(ports::Module::null);
}

std::string source_path(const std::string& path) {
  return desk_path(std::string(KY_SOURCE_FOLDER) + "/" + path);
}

picojson::value parse(const std::string& text) {
  picojson::value document;
  const std::string error = picojson::parse(document, text);
  EXPECT_EQ(error, "");
  return document;
}

/// The document of a machine that a real prefix can be laid out like: nobody holds a file, and there are no links,
/// which Wine does not make. Nothing runs on it but the script's own process: the layout has files without programs in
/// them, and a process that hangs or cannot be opened is nothing that a layout could start. real_processes_test.cpp
/// closes real ones.
std::string alike(const std::string& file) {
  picojson::value document = parse(read_text(source_path("samples/machines/" + file)));
  picojson::array& files = document.get<picojson::object>()["files"].get<picojson::array>();
  const auto is_link = [](const picojson::value& row) { return row.contains("link"); };
  document.get<picojson::object>().erase("processes");
  files.erase(std::remove_if(files.begin(), files.end(), is_link), files.end());
  for (picojson::value& row : files) {
    for (const char* const member : {"open", "running", "protected"}) row.get<picojson::object>().erase(member);
  }
  return document.serialize();
}

/// A machine with its engines, for its ports alone.
struct LaidOutMachine {
  explicit LaidOutMachine(const std::string& text)
      : world(machine::Machine::from_json(text, "laid out")),
        engines(ports::make_engines(world->errors())),
        system(world->system(*engines)) {}
  std::unique_ptr<machine::Machine> world;
  std::unique_ptr<ports::Engines> engines;
  ports::System system;
};

picojson::object comparable_globals(const picojson::value& result, const picojson::value& other) {
  picojson::object globals = result.get("globals").get<picojson::object>();
  for (const picojson::value* const from : {&result, &other}) {
    for (const picojson::value& name : from->get("environment").get<picojson::array>()) {
      globals.erase(name.get<std::string>());
    }
  }
  return globals;
}

class RealRuns : public testing::TestWithParam<Sample> {};

TEST_P(RealRuns, GiveTheCommandsAndGlobalsOfTheRehearsal) {
  const contract::OwnHives hives;
  const Sample& sample = GetParam();
  const LaidOutMachine workshop(alike("workshop.json"));
  copy_folder(workshop.system, real(), L"C:\\KySample");
  copy_key(workshop.system, real(), {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\KySample"});
  const std::string out = output_folder("run-" + sample.name);
  const int code =
      run_program(desk_path(KY_PROGRAM), {"run", "--script", source_path("samples/scripts/" + sample.script + ".xml"),
                                          "--key", source_path("keys/development/log-private.pem"), "--out", out});
  // 3 tells of what is still there, which nobody looks for in a real run.
  EXPECT_EQ(code == 0, sample.exit_code != 1) << code;
  const picojson::value run = parse(read_text(desk::join(out, "result.json")));
  const picojson::value rehearsal = parse(read_text(source_path("tests/golden/results/" + sample.name + ".json")));
  for (const char* const member : {"commands", "returnCode", "stopped", "endedEarly"}) {
    EXPECT_EQ(run.get(member).serialize(), rehearsal.get(member).serialize()) << member;
  }
  EXPECT_EQ(picojson::value(comparable_globals(run, rehearsal)).serialize(),
            picojson::value(comparable_globals(rehearsal, run)).serialize());
  EXPECT_FALSE(read_text(desk::join(out, "log.txt")).empty());
}

TEST(RealRuns, ReadTheSwitchesOfTheirParentsLine) {
  const std::string out = output_folder("parent");
  const std::string script = desk::join(out, "parent.xml");
  ASSERT_EQ(desk::write_file(script,
                             "<install version=\"1.0\"><commands><CommandLineParser knownParams=\"/silent "
                             "/update /pixel_url=\"/></commands></install>"),
            "");
  // The child starts what follows its dashes and waits for it.
  EXPECT_EQ(
      run_program(desk_path(KY_CHILD), {"/silent", "/secret=abc", "/pixel_url=Gr\u00FC\u00DFe",
                                        "0\" -- \"" + desk_path(KY_PROGRAM), "run", "--script", script, "--out", out}),
      0);
  const picojson::value globals = parse(read_text(desk::join(out, "result.json"))).get("globals");
  EXPECT_EQ(globals.get("int_Silent").serialize(), "1");
  EXPECT_EQ(globals.get("int_RunUpdate").serialize(), "0");
  EXPECT_EQ(globals.get("String_ParrentCommandLine").to_str(), "/silent /pixel_url=Gr\u00FC\u00DFe\"");
}

/// The workshop keeps all that is its own in one folder and one key, which can be laid out for real.
std::vector<Sample> runnable() {
  std::vector<Sample> out;
  std::copy_if(samples().begin(), samples().end(), std::back_inserter(out),
               [](const Sample& sample) { return sample.machine == "workshop"; });
  return out;
}

INSTANTIATE_TEST_SUITE_P(Each, RealRuns, testing::ValuesIn(runnable()),
                         [](const testing::TestParamInfo<Sample>& sample) {
                           std::string name = sample.param.name;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

/// What log.txt tells behind each line's time and thread, which differ from run to run, without the line that begins
/// the thread; in lower case, since worlds differ in the case of the system's folders.
std::vector<std::string> messages_in(const std::string& log) {
  std::vector<std::string> messages;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("====") != std::string::npos) continue;
    std::string& message = messages.emplace_back(line.substr(line.find(' ', line.find("] ") + 2) + 1));
    for (char& c : message) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
  }
  return messages;
}

class RealRun : public testing::Test {
 protected:
  int run(std::vector<std::string> more) {
    std::vector<std::string> arguments = {"run", "--script", script_, "--out", out_.path()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run_program(desk_path(KY_PROGRAM), arguments);
  }
  /// The run's log files in the folder, once there is one.
  std::vector<std::string> logs() {
    std::vector<std::string> names;
    EXPECT_EQ(desk::list_files(out_.path(), names), "");
    std::erase_if(names, [](const std::string& name) { return !name.starts_with("kysample."); });
    return names;
  }

  const std::string script_ = source_path("samples/scripts/logging.xml");
  support::TemporaryFolder out_;
};

TEST_F(RealRun, ShowsTheSealedLogToWhoeverHasThePrivateKeyAsTheRehearsalDoes) {
  EXPECT_EQ(run({"--key", source_path("keys/development/log-private.pem")}), 0);
  const std::string rehearsed = output_folder("run-log");
  EXPECT_EQ(run_program(desk_path(KY_PROGRAM), {"rehearse", "--machine", source_path("samples/machines/workshop.json"),
                                                "--script", script_, "--out", rehearsed}),
            0);
  const std::string log = read_text(out_ / "log.txt");
  EXPECT_EQ(log.substr(0, 1), "[");
  EXPECT_NE(log.find("(Installer main thread) on "), std::string::npos) << log;
  const std::vector<std::string> messages = messages_in(log);
  EXPECT_EQ(messages, messages_in(read_text(desk::join(rehearsed, "log.txt"))));
  EXPECT_GE(messages.size(), 3U) << log;
  ASSERT_EQ(logs().size(), 1U);
  EXPECT_TRUE(logs().front().ends_with(".kyinstall.v2.bin"));
}

TEST_F(RealRun, LeavesNothingInTheClearWithoutThePrivateKey) {
  EXPECT_EQ(run({}), 0);
  EXPECT_FALSE(desk::exists(out_ / "log.txt"));
  ASSERT_EQ(logs().size(), 1U);
  const std::string bytes = read_text(out_ / logs().front().c_str());
  EXPECT_EQ(bytes.substr(0, 4), std::string("\x80\0\0\0", 4));
  EXPECT_EQ(bytes.find("Begin"), std::string::npos);
}

const std::vector<std::wstring> folders = {L"C:\\Program Files", L"C:\\Program Files (x86)", L"C:\\ProgramData",
                                           L"C:\\Users\\Public", L"C:\\Users\\anna"};
const std::vector<KeyRoot> keys = {
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Tavrine"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Tavrine Device Management"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Tavrine Parent Care"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Tavrine VPN"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Tavrinex"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\KyAgent"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Example"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Wow6432Node\\KyAgent"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Wow6432Node\\Example Player"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE",
     L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall"},
    {ports::RegistryKey::local_machine, L"HKEY_LOCAL_MACHINE",
     L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options"},
    {ports::RegistryKey::users, L"HKEY_USERS", L"S-1-5-21-1004336348-1177238915-682003330-1001"},
    {ports::RegistryKey::users, L"HKEY_USERS", L"S-1-5-21-1004336348-1177238915-682003330-1002"},
};

std::set<std::wstring> list_all(const ports::System& world) {
  std::set<std::wstring> out;
  for (const std::wstring& folder : folders) out.merge(list_folder(world, folder));
  for (const KeyRoot& key : keys) out.merge(list_key(world, key));
  return out;
}

std::set<std::wstring> missing(const std::set<std::wstring>& before, const std::set<std::wstring>& after) {
  std::set<std::wstring> out;
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(), std::inserter(out, out.end()));
  return out;
}

/// The products lie where the suite's set-up lies; the suite's helper is a program that ends.
std::wstring lay_out_the_suite(const ports::System& like) {
  for (const std::wstring& folder : folders) copy_folder(like, real(), folder);
  for (const KeyRoot& key : keys) copy_key(like, real(), key);
  const std::wstring setup = L"C:\\Program Files\\Tavrine\\Setup\\";
  const std::wstring product = base::strings::to_wide(desk_path(std::string(KY_BINARY_FOLDER) + "/product/"));
  for (const wchar_t* const file : {L"kysetup.exe", L"kycommands.dll"}) {
    copy_file(real(), product + file, real(), setup + file);
  }
  copy_file(real(), base::strings::to_wide(desk_path(KY_CHILD)), real(),
            L"C:\\Program Files\\Tavrine\\Tavrine\\KyElevate.exe");
  return setup + L"kysetup.exe";
}

/// The paths of the machine's scheduled tasks.
std::set<std::wstring> tasks_of(const std::string& machine) {
  std::set<std::wstring> paths;
  const picojson::value document = parse(machine);
  for (const picojson::value& task : document.get("task_scheduler").get("tasks").get<picojson::array>()) {
    paths.insert(base::strings::to_wide(task.get("path").to_str()));
  }
  return paths;
}

TEST(Kysetup, RemovesForRealWhatTheRehearsalRemovesAndNothingElse) {
  const contract::OwnHives hives;
  const std::string text = alike("suite-installed.json");
  LaidOutMachine like(text);
  const std::wstring program = lay_out_the_suite(like.system);
  contract::RegisteredTasks tasks;
  for (const std::wstring& path : tasks_of(text)) tasks.add(path);
  const std::set<std::wstring> before = list_all(real());
  EXPECT_EQ(run_program(base::strings::to_utf8(program), {}), 0);
  const std::set<std::wstring> gone = missing(before, list_all(real()));

  const std::string out = output_folder("kysetup");
  const std::string file = desk::join(out, "laid-out.json");
  ASSERT_EQ(desk::write_file(file, text), "");
  EXPECT_EQ(run_program(desk_path(KY_PROGRAM), {"rehearse", "--machine", file, "--out", out}), 0);
  const std::string machine_after = read_text(desk::join(out, "machine.json"));
  LaidOutMachine after(machine_after);
  const std::set<std::wstring> machine_before = list_all(like.system);
  const std::set<std::wstring> machine_gone = missing(machine_before, list_all(after.system));
  EXPECT_EQ(missing(gone, machine_gone), std::set<std::wstring>()) << "gone for real, not on the machine";
  EXPECT_EQ(missing(machine_gone, gone), std::set<std::wstring>()) << "gone on the machine, not for real";
  EXPECT_GT(gone.size(), 100u);
  const std::set<std::wstring> tasks_left = tasks_of(machine_after);
  EXPECT_EQ(tasks_of(text).size(), tasks_left.size() + 6);
  for (const std::wstring& path : tasks_of(text)) {
    EXPECT_EQ(contract::has_task(path), tasks_left.contains(path)) << base::strings::to_utf8(path);
  }

  // Nothing came but the run's log, and every bystander stands. Tests beside this one leave logs in the same folder.
  const std::set<std::wstring> came = missing(list_all(real()), before);
  std::size_t own_logs = 0;
  for (const std::wstring& path : came) {
    own_logs += path.starts_with(L"c:\\programdata\\kysetup.") && path.ends_with(L".kyinstall.v2.bin") ? 1U : 0U;
    EXPECT_TRUE(path.starts_with(L"c:\\programdata\\") && path.ends_with(L".bin"))
        << base::strings::to_utf8(path) << " came for real";
  }
  EXPECT_EQ(own_logs, 1u);
  for (const wchar_t* const bystander :
       {L"c:\\program files\\example office\\office.exe", L"c:\\program files\\tavrine\\setup\\kysetup.exe",
        L"c:\\users\\anna\\documents\\diary.txt", L"hkey_local_machine\\software\\tavrinex\\",
        L"hkey_local_machine\\software\\microsoft\\windows\\currentversion\\uninstall\\example office\\"}) {
    EXPECT_TRUE(before.contains(bystander) && !gone.contains(bystander)) << base::strings::to_utf8(bystander);
  }
}

}  // namespace
}  // namespace scenario
