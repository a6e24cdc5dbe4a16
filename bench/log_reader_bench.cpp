#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <array>
#include <string>
#include <vector>

#include "diagnostics/reader/log_reader.h"
#include "platform/desk/desk.h"
#include "tests/support/log_maker.h"

namespace bench {
namespace {

constexpr int records = 40'000;

/// A merged log with the records of four threads, 200 characters each, in a file of the desk.
struct SealedLog {
  SealedLog() {
    std::string bytes = maker.header();
    for (int n = 0; n < records; ++n) {
      if (n % (records / 4) == 0) bytes += maker.first_record("10:00:00:000", static_cast<std::uint32_t>(n + 1));
      bytes += maker.record("10:00:00:" + std::to_string(100 + n % 900), std::wstring(199, L'x') + L'\n');
    }
    size = bytes.size();
    if (!desk::write_file(path, bytes).empty()) std::abort();
  }
  ~SealedLog() { (void)desk::remove(path); }
  SealedLog(const SealedLog&) = delete;
  SealedLog& operator=(const SealedLog&) = delete;

  support::LogMaker maker;
  const std::string path = desk::join(KY_BINARY_FOLDER, "bench.1.kyinstall.v2.bin");
  std::size_t size = 0;
};

class Units final : public diagnostics::reader::RecordSink {
 public:
  void record(const diagnostics::reader::Record& record) override { count += record.message.size(); }
  void problem(const diagnostics::reader::Problem&) override { std::abort(); }
  std::size_t count = 0;
};

void read_log(benchmark::State& state, bool by_thread) {
  const SealedLog log;
  diagnostics::reader::Settings settings;
  settings.keys = &log.maker.keys();
  settings.by_thread = by_thread;
  for (auto _ : state) {
    Units units;
    diagnostics::reader::read_logs({log.path}, settings, units);
    if (units.count < std::size_t{records} * 200) state.SkipWithError("records are missing");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(log.size));
}
void log_read_in_order(benchmark::State& state) {
  read_log(state, true);
}
void log_read_timeline(benchmark::State& state) {
  read_log(state, false);
}
BENCHMARK(log_read_in_order)->Unit(benchmark::kMicrosecond);
BENCHMARK(log_read_timeline)->Unit(benchmark::kMicrosecond);

/// The same records deciphered in memory, each as the message that it is.
void log_read_floor(benchmark::State& state) {
  const SealedLog log;
  std::string bytes;
  if (!desk::read_file(log.path, log.size, bytes).empty()) std::abort();
  const std::array<unsigned char, 32> key = [] {
    std::array<unsigned char, 32> same{};
    same.fill(support::LogMaker::key_byte);
    return same;
  }();
  const std::array<unsigned char, 16> iv{};
  std::array<unsigned char, 1024> plain{};
  EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
  EVP_DecryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), iv.data());
  for (auto _ : state) {
    int total = 0;
    for (std::size_t at = log.maker.header().size(); at < bytes.size();) {
      const auto* const from = reinterpret_cast<const unsigned char*>(bytes.data()) + at;
      const int length = from[0] | from[1] << 8;
      int body = 0;
      int rest = 0;
      EVP_DecryptInit_ex(context, nullptr, nullptr, nullptr, iv.data());
      EVP_DecryptUpdate(context, plain.data(), &body, from + 4, length);
      if (EVP_DecryptFinal_ex(context, plain.data() + body, &rest) != 1) state.SkipWithError("wrong key");
      total += body + rest;
      at += 4 + static_cast<std::size_t>(length);
    }
    benchmark::DoNotOptimize(total);
  }
  EVP_CIPHER_CTX_free(context);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(log.size));
}
BENCHMARK(log_read_floor)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
