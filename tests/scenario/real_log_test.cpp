// Logs and dumps that processes leave which end in the midst of it, for real.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "diagnostics/reader/log_reader.h"
#include "diagnostics/reader/session_key.h"
#include "installer/utils/base/strings/utf8.h"
#include "platform/ports/build.h"
#include "platform/ports/environment.h"
#include "platform/ports/processes.h"
#include "tests/contract/scratch.h"
#include "tests/scenario/log_progress.h"
#include "tests/scenario/programs.h"
#include "tests/support/log_files.h"

namespace scenario {
namespace {

using diagnostics::reader::Problem;
using diagnostics::reader::ProblemKind;
using diagnostics::reader::Record;

const ports::System& real() {
  return *ports::real_system(ports::Module::null);
}

std::vector<std::wstring> names_in(const std::wstring& folder, const std::wstring& pattern) {
  std::vector<std::wstring> names;
  ports::FolderRow row;
  const ports::Handle search = real().files.find_first((folder + L"\\" + pattern).c_str(), row);
  if (search == ports::Handle::invalid) return names;
  do {
    if ((row.attributes & ports::file_attribute::directory) == 0) names.push_back(row.name);
  } while (real().files.find_next(search, row));
  real().files.find_close(search);
  std::sort(names.begin(), names.end());
  return names;
}

/// The log files of a label, in the folder where the product leaves them; removed at the end.
class LogsOf {
 public:
  explicit LogsOf(const std::wstring& label) {
    const std::wstring folder = real().environment.folder(ports::KnownFolder::common_app_data);
    for (const std::wstring& name : names_in(folder, label + L".*.bin")) {
      paths.push_back(base::strings::to_utf8(folder + L"\\" + name));
    }
  }
  ~LogsOf() {
    for (const std::string& path : paths) real().files.remove(base::strings::to_wide(path).c_str());
  }
  LogsOf(const LogsOf&) = delete;
  LogsOf& operator=(const LogsOf&) = delete;

  void read(diagnostics::reader::RecordSink& sink) const {
    diagnostics::reader::KeyOpener keys(real().cng);
    ASSERT_TRUE(keys.use_algorithm(L"AES") && keys.use_private_key(support::log_private_key()));
    diagnostics::reader::Settings settings;
    settings.keys = &keys;
    diagnostics::reader::read_logs(paths, settings, sink);
  }

  std::vector<std::string> paths;
};

/// Counts each thread's records, which have to be the ones it wrote, in their order.
class Counting final : public diagnostics::reader::RecordSink {
 public:
  explicit Counting(const LogProgress& progress) : progress_(progress) {}
  void record(const Record& read) override {
    std::uint32_t& count = counts[read.thread == progress_.lanes[0].thread ? 0 : 1];
    if (count++ != 0) {
      EXPECT_TRUE(read.message == log_message(count - 2)) << "record " << count;
    }
  }
  void problem(const Problem& problem) override {
    EXPECT_TRUE(problem.kind == ProblemKind::cut_short || problem.kind == ProblemKind::note) << problem.line();
  }
  std::array<std::uint32_t, 2> counts{};

 private:
  const LogProgress& progress_;
};

TEST(RealLogs, EveryRecordWhoseFlushReturnedOutlivesTheProcess) {
  constexpr int kills = 200;
  std::minstd_rand random(1);
  std::uint64_t records = 0;
  for (int n = 0; n < kills && !testing::Test::HasFailure(); ++n) {
    const std::wstring name = L"kill" + std::to_wstring(real().processes.current_id()) + L"x" + std::to_wstring(n);
    const SharedLogProgress shared(name);
    LogProgress& progress = *shared;
    const std::wstring line =
        L"\"" + base::strings::to_wide(desk_path(KY_LOG_CHILD)) + L"\" write " + name + L" " + name;
    ports::CreatedProcess child;
    // Wine was seen to refuse one start of some two thousand, and never twice in a row.
    const auto start = [&] { return real().processes.create(line.c_str(), nullptr, 0, child); };
    ASSERT_TRUE(start() || start()) << "kill " << n << ", error " << real().errors.last();
    for (int waited = 0; !progress.began && waited < 30'000; ++waited) real().threads.sleep(1);
    ASSERT_TRUE(progress.began);
    real().threads.sleep(static_cast<std::uint32_t>(random() % 20));
    EXPECT_TRUE(real().processes.terminate(child.process, 9));
    EXPECT_EQ(real().waits.wait({&child.process, 1}, true, 30'000), ports::wait_result::object_0);
    real().waits.close(child.thread);
    real().waits.close(child.process);
    Counting sink(progress);
    LogsOf(name).read(sink);
    for (std::size_t lane = 0; lane < 2; ++lane) {
      const std::uint32_t written = progress.lanes[lane].written;
      EXPECT_GE(sink.counts[lane], written == 0 ? 0 : written + 1) << "kill " << n;
      records += written;
    }
  }
  RecordProperty("records", std::to_string(records));
  EXPECT_GT(records, std::uint64_t{kills}) << "the writers came to something";
}

/// Keeps the messages.
class Keeping final : public diagnostics::reader::RecordSink {
 public:
  void record(const Record& read) override { messages.emplace_back(read.message); }
  void problem(const Problem& problem) override { ADD_FAILURE() << problem.line(); }
  std::vector<std::wstring> messages;
};

class RealCrashes : public testing::TestWithParam<const char*> {};

TEST_P(RealCrashes, LeaveTwoDumpsAndALogUpToThem) {
  // In a folder without an underscore; the program's name must not have one either.
  const std::wstring folder = contract::make_scratch_folder(real());
  ASSERT_EQ(folder.find(L'_'), std::wstring::npos);
  const std::wstring program = folder + L"\\child.exe";
  const std::string image = read_text(desk_path(KY_LOG_CHILD));
  const ports::Handle file =
      real().files.open(program.c_str(), ports::file_access::generic_write, 0, ports::Disposition::create_new, 0);
  std::uint32_t written = 0;
  ASSERT_TRUE(real().files.write(file, support::Bytes(image.begin(), image.end()), written));
  real().waits.close(file);

  const std::wstring label = L"crash" + std::to_wstring(real().processes.current_id());
  const int code = run_program(base::strings::to_utf8(program), {"crash", base::strings::to_utf8(label), GetParam()});
  EXPECT_TRUE(code < 0 && code != -1) << "a fault's code: " << code;

  const std::wstring dumps = folder + L"\\Dumps";
  const std::vector<std::wstring> names = names_in(dumps, L"*");
  EXPECT_EQ(names.size(), 2U);
  for (const std::wstring& name : names) {
    const support::Bytes head = support::read_begin(real(), dumps + L"\\" + name, 32);
    ASSERT_EQ(head.size(), 32U);
    EXPECT_EQ(std::string(head.begin(), head.begin() + 4), "MDMP");
    std::uint64_t flags = 0;
    std::memcpy(&flags, head.data() + 24, sizeof flags);
    EXPECT_EQ(flags, name.starts_with(L"ky_") ? 2U : 0U);
    EXPECT_TRUE(name.starts_with(L"ky_") || name.starts_with(L"kym"));
    EXPECT_TRUE(name.ends_with(L".dmp"));
  }
  contract::remove_folder_tree(real(), folder);

  const LogsOf logs(label);
  EXPECT_EQ(logs.paths.size(), 1U) << "nothing merges them";
  Keeping log;
  logs.read(log);
  ASSERT_FALSE(log.messages.empty());
  EXPECT_EQ(log.messages.back(), L"the last words\n");
}

INSTANTIATE_TEST_SUITE_P(Faults, RealCrashes, testing::Values("AccessViolation", "InvalidParameter", "Exception"),
                         [](const auto& fault) { return std::string(fault.param); });

}  // namespace
}  // namespace scenario
