#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <openssl/evp.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "diagnostics/log_format.h"
#include "diagnostics/logger_api.h"
#include "platform/desk/desk.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "platform/ports/threads.h"

namespace bench {
namespace {

/// Records a round: so many that a second thread's start and first use of memory do not count.
constexpr std::size_t batch = 16000;
constexpr std::size_t message_length = 200;

std::string folder() {
  const std::string path = desk::join(KY_BINARY_FOLDER, "bench-log");
  if (!desk::make_folders(path).empty()) std::abort();
  return path;
}

std::wstring message() {
  std::wstring text = L"5: DeleteRegKey Key='HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavrine\\Components' ";
  while (text.size() < message_length - 1) text.push_back(static_cast<wchar_t>(L'a' + text.size() % 26));
  return text + L'\n';
}

/// A log on a machine whose clock is the real one and whose log files are written through to the desk.
class LogWorld {
 public:
  explicit LogWorld(bool sealed) {
    ports::bind(system_);
    log_.reset(new ky::CLoggerApi);
    if (!sealed) {
      log_->SetXorKey(diagnostics::log_format::fall_back_key.data());
    } else if (!log_->SetupEncryption(L"AES", 256)) {
      std::abort();
    }
  }
  ~LogWorld() {
    log_.reset();
    ports::unbind();
  }
  LogWorld(const LogWorld&) = delete;
  LogWorld& operator=(const LogWorld&) = delete;

  /// So many threads, each with a file of its own, write a batch each. One is the calling thread.
  void write(int threads) {
    std::vector<ports::Handle> others;
    for (int n = 1; n < threads; ++n) {
      std::uint32_t id = 0;
      others.push_back(system_.threads.start(std::make_unique<Writer>(*log_), id));
    }
    Writer(*log_).run();
    for (const ports::Handle other : others) {
      static_cast<void>(system_.waits.wait({&other, 1}, true, ports::infinite));
      system_.waits.close(other);
    }
  }

 private:
  class Writer final : public ports::ThreadBody {
   public:
    explicit Writer(ky::CLoggerApi& log) : log_(log) {}
    void run() override {
      log_.StartThreadLog(nullptr, false);
      const std::wstring text = message();
      for (std::size_t n = 0; n < batch; ++n) log_.WriteLine(text.c_str());
    }

   private:
    ky::CLoggerApi& log_;
  };

  machine::Machine world_{machine::Options{.pace = machine::Pace::real, .log_folder = folder()}};
  std::unique_ptr<ports::Engines> engines_ = ports::make_engines(world_.errors());
  ports::System system_ = world_.system(*engines_);
  std::unique_ptr<ky::CLoggerApi, ky::Releaser> log_;
};

// Every round has a fresh log, and memory once taken is kept: the machine holds its files in memory beside the desk's,
// which is not the log's to pay for.
void write_log(benchmark::State& state, bool sealed, int threads) {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  for (auto _ : state) {
    state.PauseTiming();
    auto world = std::make_unique<LogWorld>(sealed);
    state.ResumeTiming();
    world->write(threads);
    state.PauseTiming();
    world.reset();
    state.ResumeTiming();
  }
}
void log_sealed(benchmark::State& state) {
  write_log(state, true, 1);
}
void log_sealed_by_two(benchmark::State& state) {
  write_log(state, true, 2);
}
void log_scrambled(benchmark::State& state) {
  write_log(state, false, 1);
}
BENCHMARK(log_sealed)->Unit(benchmark::kMicrosecond);
BENCHMARK(log_sealed_by_two)->Unit(benchmark::kMicrosecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(log_scrambled)->Unit(benchmark::kMicrosecond);

/// What a sealed record cannot do without: its bytes encrypted, and one write.
void log_sealed_floor(benchmark::State& state) {
  EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
  const std::array<unsigned char, 32> key{};
  const std::array<unsigned char, 16> iv{};
  EVP_EncryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), iv.data());
  const std::vector<unsigned char> plain((diagnostics::log_format::time_stamp_length + message_length + 1) * 2, 'x');
  std::array<unsigned char, 1024> record{};
  const std::string path = desk::join(folder(), "floor.bin");
  for (auto _ : state) {
    state.PauseTiming();
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
    state.ResumeTiming();
    for (std::size_t n = 0; n < batch; ++n) {
      int body = 0;
      int rest = 0;
      EVP_EncryptInit_ex(context, nullptr, nullptr, nullptr, iv.data());
      EVP_EncryptUpdate(context, record.data() + 4, &body, plain.data(), static_cast<int>(plain.size()));
      EVP_EncryptFinal_ex(context, record.data() + 4 + body, &rest);
      if (write(file, record.data(), static_cast<std::size_t>(4 + body + rest)) < 0) state.SkipWithError("no write");
    }
    state.PauseTiming();
    close(file);
    state.ResumeTiming();
  }
  EVP_CIPHER_CTX_free(context);
  static_cast<void>(desk::remove(path));
}
BENCHMARK(log_sealed_floor)->Unit(benchmark::kMicrosecond);

/// A usual log in the clear, as safe against a kill: a flush after every message.
void log_in_the_clear(benchmark::State& state) {
  const std::string path = desk::join(folder(), "clear.log");
  const std::wstring wide = message();
  const std::string text(wide.begin(), wide.end() - 1);
  for (auto _ : state) {
    state.PauseTiming();
    {
      spdlog::logger log("clear", std::make_shared<spdlog::sinks::basic_file_sink_mt>(path, true));
      log.flush_on(spdlog::level::trace);
      state.ResumeTiming();
      for (std::size_t n = 0; n < batch; ++n) log.info(text);
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
  static_cast<void>(desk::remove(path));
}
BENCHMARK(log_in_the_clear)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
