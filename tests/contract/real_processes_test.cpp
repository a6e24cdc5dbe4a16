// Processes for real: recognised, asked to close, and ended.
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <ratio>

#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "installer/utils/base/process/command_line.h"
#include "installer/utils/base/strings/utf8.h"
#include "ky/keys.h"
#include "platform/ports/build.h"
#include "platform/ports/processes.h"
#include "tests/contract/scratch.h"
#include "tests/contract/world.h"
#include "tests/support/close_targets.h"
#include "tests/support/kept_log.h"
#include "tests/support/script_text.h"

namespace contract {

namespace {

using std::chrono::milliseconds;
/// The system's time since 1601, as it stamps processes with.
using Moment = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

Moment moment_of(const FILETIME& time) {
  return Moment((static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime);
}

Moment now() {
  FILETIME time{};
  GetSystemTimeAsFileTime(&time);
  return moment_of(time);
}

constexpr std::uint32_t alive = STILL_ACTIVE;
constexpr std::uint32_t closed_itself = 5;
constexpr std::uint32_t terminated = 0;
constexpr int never = -1;

/// A program that runs until it is asked to close, and how long after that.
struct Running {
  std::wstring event_name;
  HANDLE event = nullptr;
  ports::CreatedProcess process;
};

class RealProcesses : public testing::Test {
 protected:
  ~RealProcesses() override {
    for (const auto& one : running_) {
      system_.processes.terminate(one->process.process, 0);
      system_.waits.wait({&one->process.process, 1}, false, 60000);
      system_.waits.close(one->process.thread);
      system_.waits.close(one->process.process);
      CloseHandle(one->event);
    }
    remove_folder_tree(system_, folder_);
  }

  static std::wstring child() {
    wchar_t own[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    const std::wstring path = own;
    return path.substr(0, path.rfind(L'\\') + 1) + L"ky_contract_child.exe";
  }

  /// A folder below the scratch folder, with its closing backslash.
  std::wstring folder(const std::wstring& name) {
    const std::wstring path = folder_ + L"\\" + name;
    CreateDirectoryW(path.c_str(), nullptr);
    return path + L"\\";
  }
  std::wstring copy_to(const std::wstring& path) {
    EXPECT_TRUE(CopyFileW(child().c_str(), path.c_str(), TRUE)) << GetLastError();
    return path;
  }

  /// Starts a program that ends `after` milliseconds after it is asked.
  Running& start(const std::wstring& path, int after) {
    auto made = std::make_unique<Running>();
    made->event_name =
        L"ky-closing-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(running_.size());
    made->event = CreateEventW(nullptr, TRUE, FALSE, made->event_name.c_str());
    const std::wstring line = L"\"" + path + L"\" await " + made->event_name + L" " + std::to_wstring(after);
    EXPECT_TRUE(system_.processes.create(line.c_str(), nullptr, ports::creation_flag::no_window, made->process))
        << GetLastError();
    running_.push_back(std::move(made));
    return *running_.back();
  }

  /// What asks a program to close.
  std::wstring request(const Running& of) { return L"\"" + child() + L"\" set " + of.event_name; }

  static std::uint32_t exit_code(const Running& of) {
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(reinterpret_cast<HANDLE>(of.process.process), &code));
    return code;
  }

  /// The same, of a process that is ending.
  std::uint32_t final_code(const Running& of) {
    EXPECT_EQ(system_.waits.wait({&of.process.process, 1}, false, 20000), 0U);
    return exit_code(of);
  }

  static Moment ended_at(const Running& of) {
    FILETIME started{}, ended{}, in_kernel{}, in_program{};
    EXPECT_TRUE(
        GetProcessTimes(reinterpret_cast<HANDLE>(of.process.process), &started, &ended, &in_kernel, &in_program));
    return moment_of(ended);
  }

  /// Runs one command, and gives how long that took.
  milliseconds run(const std::string& name, const support::Attributes& attributes) {
    const host::TableFactories library{ky::library::factories()};
    host::Session session(system_, library);
    EXPECT_EQ(session.start(host::built_in_script_key()), "");
    auto* const log = new support::KeptLog(log_);
    log->on_line = [this] {
      if (log_.back().find(L": waiting for ") != std::wstring::npos) wait_began_ = now();
    };
    session.store().put(ky::keys::SelfFree_LoggerApi.name, ky::ToStored<ky::ILoggerApi*>(log));
    EXPECT_TRUE(session.load(support::ScriptText(system_.cipher).add(name, attributes).text()).empty());
    host::RunObserver observer;
    const Moment begin = now();
    EXPECT_EQ(session.run(observer).end, host::RunEnd::finished);
    return std::chrono::duration_cast<milliseconds>(now() - begin);
  }

  bool logged(const std::wstring& text) const {
    return std::any_of(log_.begin(), log_.end(), [&](const std::wstring& l) { return l.find(text) != l.npos; });
  }

  const ports::System& system_ = *ports::real_system(ports::Module::null);
  const std::wstring folder_ = make_scratch_folder(system_);
  std::vector<std::unique_ptr<Running>> running_;
  std::vector<std::wstring> log_;
  Moment wait_began_{};
};

/// Twelve programs with names of their own in one folder.
struct Twelve {
  std::vector<Running*> programs;
  support::CloseTargets entries;
};

class ClosingTwelve : public RealProcesses {
 protected:
  Twelve start_twelve(const std::vector<int>& delays, std::uint32_t limit) {
    const std::wstring suite = folder(L"suite");
    Twelve made{{}, support::CloseTargets(std::to_string(limit))};
    for (std::size_t i = 0; i < delays.size(); ++i) {
      const std::wstring name = L"ky" + std::to_wstring(i + 10) + L".exe";
      made.programs.push_back(&start(copy_to(suite + name), delays[i]));
      made.entries.add(name, request(*made.programs.back()), suite);
    }
    return made;
  }
};

TEST_F(ClosingTwelve, TakesNoLongerThanTheSlowest) {
  constexpr int slowest = 8000;
  const Twelve twelve = start_twelve({900, 2500, 300, 5000, slowest, 100, 4000, 0, 6500, 1200, 3000, 50}, 60000);
  const milliseconds took = run("CloseProcesses", twelve.entries.all());
  EXPECT_GE(took, milliseconds(slowest));
  EXPECT_LE(took, milliseconds(slowest * 11 / 10));
  for (const Running* const one : twelve.programs) EXPECT_EQ(exit_code(*one), closed_itself);
  EXPECT_TRUE(logged(L"waiting for 12 processes"));
  EXPECT_TRUE(logged(L"all processes were closed correctly"));
}

TEST_F(ClosingTwelve, EndsThoseThatHangWhenTheLimitIsReachedAndNoOther) {
  constexpr int limit = 6000;
  const std::vector<int> delays = {900, 2500, never, 3500, 0, 100, never, 0, 3000, 1200, never, 50};
  const Twelve twelve = start_twelve(delays, limit);
  static_cast<void>(run("CloseProcesses", twelve.entries.all()));
  for (std::size_t i = 0; i < delays.size(); ++i) {
    EXPECT_EQ(final_code(*twelve.programs[i]), delays[i] == never ? terminated : closed_itself) << i;
    if (delays[i] != never) continue;
    const Moment after = ended_at(*twelve.programs[i]) - wait_began_;
    EXPECT_GE(after, milliseconds(limit)) << "none before";
    EXPECT_LE(after, milliseconds(limit * 11 / 10));
  }
  EXPECT_EQ(std::count_if(log_.begin(), log_.end(),
                          [](const std::wstring& l) { return l.find(L"terminate process") != l.npos; }),
            3);
}

TEST_F(RealProcesses, OnlyTheFileThatTheScriptNamesIsClosed) {
  const std::wstring ours = folder(L"one"), second = folder(L"two"), elsewhere = folder(L"elsewhere"),
                     sibling = folder(L"six");
  const std::wstring file = copy_to(ours + L"kytarget.exe");
  copy_to(second + L"kytarget.exe");
  copy_to(elsewhere + L"kytarget.exe");
  copy_to(sibling + L"kytarget.exe");
  copy_to(ours + L"kytarget2.exe");
  const std::wstring linked = folder(L"ten") + L"kytarget.exe", far_link = folder(L"eleven") + L"kytarget.exe";
  ASSERT_TRUE(CreateHardLinkW(linked.c_str(), file.c_str(), nullptr));
  ASSERT_TRUE(CreateHardLinkW(far_link.c_str(), file.c_str(), nullptr));
  std::wstring shouted = file;
  std::transform(shouted.begin() + 2, shouted.end(), shouted.begin() + 2, [](wchar_t c) { return towupper(c); });

  const Running& asked = start(file, 0);
  const Running& other_target = start(second + L"kytarget.exe", 0);
  const struct {
    const char* kind;
    Running* program;
    bool ours;
  } rows[] = {
      {"the file", &start(file, never), true},
      {"the second target of the name", &start(second + L"kytarget.exe", never), true},
      {"same name elsewhere", &start(elsewhere + L"kytarget.exe", never), false},
      {"a copy in a folder of equal length", &start(sibling + L"kytarget.exe", never), false},
      {"a name that goes on", &start(ours + L"kytarget2.exe", never), false},
      {"a link to the very file, under a path of equal length", &start(linked, never), true},
      {"a link to it under a longer path", &start(far_link, never), false},
      {"the file in other case", &start(shouted, never), true},
      {"the file with dots and a blank behind its name", &start(file + L".. ", never), true},
  };
  static_cast<void>(run("CloseProcesses", support::CloseTargets("2000")
                                              .add(L"kytarget.exe", request(asked), ours)
                                              .add(L"kytarget.exe", request(other_target), second)
                                              .add(L"kytarget.exe", L"", folder_ + L"\\one.\\")
                                              .all()));
  EXPECT_EQ(final_code(asked), closed_itself);
  EXPECT_EQ(final_code(other_target), closed_itself);
  for (const auto& row : rows) {
    EXPECT_EQ(row.ours ? final_code(*row.program) : exit_code(*row.program), row.ours ? terminated : alive) << row.kind;
  }
}

TEST_F(RealProcesses, AStragglerIsEndedWhenItsTimeIsOver) {
  const std::wstring suite = folder(L"suite");
  Running& tidy = start(copy_to(suite + L"kytidy.exe"), 200);
  Running& straggler = start(copy_to(suite + L"kystraggler.exe"), never);
  const auto close = [&](const char* process, const Running& of) {
    return run("CloseProcess", {{"command", base::strings::to_utf8(child())},
                                {"process", process},
                                {"args", "set " + base::strings::to_utf8(of.event_name)},
                                {"waitAmount", "1500"}});
  };
  EXPECT_LT(close("kytid", tidy), milliseconds(1500));
  EXPECT_EQ(final_code(tidy), closed_itself);
  EXPECT_GE(close("kystrag", straggler), milliseconds(1500));
  EXPECT_EQ(final_code(straggler), terminated);
}

TEST_F(RealProcesses, ACommandLineThatIsNotThereIsEmptyWithoutError) {
  ports::bind(system_);
  ports::CreatedProcess made;
  const std::wstring line = L"\"" + child() + L"\" 60000 0 nameless";
  ASSERT_TRUE(system_.processes.create(line.c_str(), nullptr, ports::creation_flag::no_window, made));
  std::error_code error;
  std::wstring read = line;
  for (int tries = 0; tries < 600 && !read.empty(); ++tries) {
    Sleep(50);
    read = base::process::GetProcessCommandLine(made.process_id, error);
  }
  EXPECT_EQ(read, L"");
  EXPECT_FALSE(error);
  system_.processes.terminate(made.process, 0);
  EXPECT_TRUE(system_.waits.close(made.thread) && system_.waits.close(made.process));
  ports::unbind();
}

}  // namespace

}  // namespace contract
