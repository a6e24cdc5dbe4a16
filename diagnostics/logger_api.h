#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "diagnostics/log_lines.h"
#include "diagnostics/log_names.h"
#include "diagnostics/log_stream_owner.h"
#include "diagnostics/scratch.h"
#include "diagnostics/sealing.h"
#include "diagnostics/thread_table.h"
#include "ky/logger_api.h"
#include "platform/ports/mutex.h"

namespace ky {

/// Writes the run's log: a file for each thread that starts one, flushed record by record, and at its own end one
/// merged file in their place. Each record is either sealed, under a key that only the holder of the private key can
/// recover, or, where that was not set up, scrambled; docs/log-format.md has the bytes. There is no clear form, and no
/// failure is reported: a record that cannot be written is lost, the run goes on.
///
/// Made, then given `SetupEncryption` or `SetXorKey`, then shared. When it is destroyed no thread uses it any more.
class CLoggerApi final : public Destroyable<CLoggerApi, ILoggerApi> {
 public:
  CLoggerApi();
  ~CLoggerApi();

  void WriteFormatted(const wchar_t* format, std::va_list arguments) override;
  void WriteLine(const wchar_t* text) override;
  /// A second start of a thread keeps its first stream, and writes a second key header into the file all the same.
  void StartThreadLog(const wchar_t* description, bool is_main_thread) override;
  void SetXorKey(const char* key) override;
  void SetMergedNameTag(const wchar_t* tag) override;

  /// Makes a session key for the sealed form. False, with nothing kept, where the system refuses the algorithm or the
  /// size.
  [[nodiscard]] bool SetupEncryption(const wchar_t* algorithm, std::int32_t key_bits);
  /// Heads all file names; before the first start of a thread.
  void SetLabel(std::wstring text) { label = std::move(text); }

 private:
  /// The form of all that is written hangs on this.
  [[nodiscard]] bool Sealed() const { return xor_key.empty(); }
  [[nodiscard]] diagnostics::LogRun Run() const { return {label, start_time, Sealed()}; }
  [[nodiscard]] std::wstring ThreadPath(std::uint32_t thread) const;

  void Write(const wchar_t* format, ...);
  void WriteHead(ports::LogStream stream) const;
  /// What a thread has; it alone uses the IV.
  struct ThreadLog {
    diagnostics::LogStreamOwner stream;
    std::vector<std::uint8_t> iv;
  };
  [[nodiscard]] ThreadLog& LogOf(std::uint32_t thread);
  /// Where the thread's records go: into the main thread's file where it has none of its own.
  [[nodiscard]] ports::LogStream StreamOf(const ThreadLog& log);
  [[nodiscard]] std::span<const std::uint8_t> EncodeRecord(const diagnostics::TimeStamp& stamp,
                                                           std::wstring_view message, std::vector<std::uint8_t>& iv,
                                                           diagnostics::Scratch<std::uint8_t>& into) const;
  void Merge();

  diagnostics::ThreadTable<ThreadLog> thread_logs;
  std::wstring label;
  std::wstring merged_name_tag;
  ports::Mutex mutex;
  const std::uint64_t start_time;
  std::vector<std::uint8_t> xor_key;
  diagnostics::CngKeyOwner session_key;
  diagnostics::CngAlgorithmOwner algorithm;
  std::vector<std::uint8_t> wrapped_key;
  std::uint32_t block_length = 0;
  std::atomic<std::uint32_t> main_thread_id{0};
  // Second streams of threads that started twice: they stay open to the end.
  std::vector<diagnostics::LogStreamOwner> unused_streams KY_GUARDED_BY(mutex);
};

}  // namespace ky
