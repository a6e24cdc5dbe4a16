// Reads a log of one GiB with `ky log read` in both orders, and holds its memory against the limit.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "installer/utils/base/strings/format.h"
#include "platform/desk/desk.h"
#include "tests/support/log_maker.h"

namespace {

constexpr std::size_t log_size = std::size_t{1} << 30;
constexpr std::uint32_t threads = 16;
constexpr long limit = 64L << 10;  // KiB

/// A merged log of that size, whose threads write at the same time.
void make_log(const std::string& path) {
  support::LogMaker maker;
  std::ofstream file(path, std::ios::binary);
  file << maker.header();
  for (std::uint32_t thread = 1; thread <= threads; ++thread) {
    file << maker.first_record("10:00:00:000", thread);
    std::size_t size = 0;
    for (std::uint32_t moment = 0; size < log_size / threads; ++moment) {
      const std::string time =
          base::strings::format("10:%02u:%02u:%03u", moment / 60'000 % 60, moment / 1000 % 60, moment % 1000);
      const std::string record = maker.record(time, std::wstring(150 + moment % 100, L'x') + L'\n');
      file << record;
      size += record.size();
    }
  }
}

/// Runs the program without its output; gives its peak of memory in KiB, or -1.
long run(std::vector<std::string> arguments) {
  const pid_t child = fork();
  if (child == 0) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) return -1;
  return usage.ru_maxrss;
}

bool fits(const std::string& path, const char* what, std::vector<std::string> options) {
  std::vector<std::string> arguments = {KY_PROGRAM, "log",   "read",
                                        path,       "--key", KY_SOURCE_FOLDER "/keys/development/log-private.pem"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  const auto begin = std::chrono::steady_clock::now();
  const long peak = run(arguments);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  const bool met = peak >= 0 && peak < limit;
  std::printf("%-52s %10.1f  (at most %ld)%s  in %.1f s\n", what, static_cast<double>(peak) / 1024, limit / 1024,
              met ? "" : "  MISSED", taken.count());
  return met;
}

}  // namespace

int main() {
  const std::string path = desk::join(KY_BINARY_FOLDER, "bench.2.kyinstall.v2.bin");
  make_log(path);
  const bool by_thread = fits(path, "1 GiB of log read in file order, MiB of memory", {"--by-thread"});
  const bool timeline = fits(path, "1 GiB of log read as a timeline, MiB of memory", {});
  const bool gone = desk::remove(path).empty();
  return by_thread && timeline && gone ? 0 : 1;
}
