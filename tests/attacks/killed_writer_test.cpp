#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "diagnostics/log_format.h"
#include "diagnostics/logger_api.h"
#include "diagnostics/reader/log_reader.h"
#include "diagnostics/reader/session_key.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "tests/support/log_files.h"
#include "tests/support/temporary_folder.h"

// A process that logs is killed at any moment; what it was told to be written is there.
namespace attacks {
namespace {

constexpr int kills = 200;

/// What the writer has come to; the parent sees it, and it outlives the writer.
struct Progress {
  struct Lane {
    std::atomic<std::uint32_t> thread;   // its id
    std::atomic<std::uint32_t> written;  // calls that have returned
  };
  std::array<Lane, 2> lanes;
  std::atomic<bool> began;
};

std::wstring message(std::uint32_t n) {
  return std::to_wstring(n) + L" " + std::wstring(n * 37 % 900, L'x') + L"\n";
}

[[noreturn]] void write_until_killed(Progress& progress, bool sealed, const std::string& folder) {
  machine::Machine world(machine::Options{.pace = machine::Pace::real, .log_folder = folder});
  const auto engines = ports::make_engines(world.errors());
  const ports::System system = world.system(*engines);
  ports::bind(system);
  std::unique_ptr<ky::CLoggerApi, ky::Releaser> log(new ky::CLoggerApi);
  if (!sealed || !log->SetupEncryption(L"AES", 256)) log->SetXorKey(diagnostics::log_format::fall_back_key.data());
  const auto write = [&](Progress::Lane& lane) {
    lane.thread = system.threads.current_id();
    progress.began = true;
    log->StartThreadLog(nullptr, false);
    for (std::uint32_t n = 0;; ++n) {
      log->WriteLine(message(n).c_str());
      lane.written = n + 1;
    }
  };
  const auto other = [&] { write(progress.lanes[1]); };
  std::uint32_t id = 0;
  static_cast<void>(system.threads.start(std::make_unique<support::Body>(other), id));
  write(progress.lanes[0]);
  _exit(1);
}

/// Counts each thread's records, which have to be the ones it wrote, in their order.
class Counting final : public diagnostics::reader::RecordSink {
 public:
  Counting(const Progress& progress, bool sealed) : progress_(progress), sealed_(sealed) {}

  void record(const diagnostics::reader::Record& read) override {
    const std::size_t lane = read.thread == progress_.lanes[0].thread ? 0 : 1;
    std::uint32_t& count = counts[lane];
    if (count++ == 0) return;  // the one that starts the thread's log
    const std::uint32_t n = count - 2;
    std::wstring written = message(n);
    if (!sealed_) written.pop_back();
    // In the fall-back form nothing tells a line that the kill has cut from a whole one, nor a line's cut beginning
    // from the end of the record before it.
    const std::uint32_t returned = progress_.lanes[lane].written;
    const bool cut = !sealed_ && n >= returned && written.starts_with(read.message);
    const bool followed = !sealed_ && n + 1 == returned && read.message.starts_with(written);
    EXPECT_TRUE(read.message == written || cut || followed) << "record " << count << " of " << returned;
  }
  void problem(const diagnostics::reader::Problem& problem) override {
    using diagnostics::reader::ProblemKind;
    EXPECT_TRUE(problem.kind == ProblemKind::cut_short || problem.kind == ProblemKind::note) << problem.line();
  }

  std::array<std::uint32_t, 2> counts{};

 private:
  const Progress& progress_;
  const bool sealed_;
};

TEST(KilledWriter, EveryRecordWhoseFlushReturnedIsReadBack) {
  machine::Machine desk;
  const auto engines = ports::make_engines(desk.errors());
  diagnostics::reader::KeyOpener keys(engines->cng());
  ASSERT_TRUE(keys.use_algorithm(L"AES") && keys.use_private_key(support::log_private_key()));
  diagnostics::reader::Settings settings;
  settings.keys = &keys;
  auto* const progress = static_cast<Progress*>(
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  std::minstd_rand random(1);
  std::uint64_t records = 0;
  for (int n = 0; n < kills && !testing::Test::HasFailure(); ++n) {
    const bool sealed = n % 4 != 0;
    const support::TemporaryFolder folder;
    new (progress) Progress{};
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) write_until_killed(*progress, sealed, folder.path());
    while (!progress->began) usleep(100);
    usleep(static_cast<useconds_t>(random() % 10'000));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << status;
    Counting sink(*progress, sealed);
    diagnostics::reader::read_logs(diagnostics::reader::files_of_folder(folder.path()), settings, sink);
    for (std::size_t lane = 0; lane < 2; ++lane) {
      const std::uint32_t written = progress->lanes[lane].written;
      EXPECT_GE(sink.counts[lane], written == 0 ? 0 : written + 1) << "kill " << n;
      records += written;
    }
  }
  munmap(progress, sizeof(Progress));
  RecordProperty("records", std::to_string(records));
  EXPECT_GT(records, std::uint64_t{kills}) << "the writers came to something";
}

}  // namespace
}  // namespace attacks
