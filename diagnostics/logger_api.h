#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "diagnostics/log_lines.h"
#include "diagnostics/log_names.h"
#include "diagnostics/log_stream_owner.h"
#include "diagnostics/scratch.h"
#include "diagnostics/sealing.h"
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
  /// Where a thread's records go, and its IV, which is the thread's own.
  struct Lane {
    ports::LogStream stream = ports::LogStream::null;
    std::vector<std::uint8_t>* iv = nullptr;
  };
  [[nodiscard]] Lane LaneOf(std::uint32_t thread) KY_EXCLUDES(mutex);
  [[nodiscard]] std::span<const std::uint8_t> EncodeRecord(const diagnostics::TimeStamp& stamp,
                                                           std::wstring_view message, std::vector<std::uint8_t>& iv,
                                                           diagnostics::Scratch<std::uint8_t>& into) const;
  using ThreadFiles = std::map<std::uint32_t, diagnostics::LogStreamOwner>;
  void Merge(ThreadFiles& files) const;

  ThreadFiles thread_files KY_GUARDED_BY(mutex);
  std::wstring label;
  std::wstring merged_name_tag;
  ports::Mutex mutex;
  const std::uint64_t start_time;
  std::vector<std::uint8_t> xor_key;
  diagnostics::CngKeyOwner session_key;
  diagnostics::CngAlgorithmOwner algorithm;
  std::map<std::uint32_t, std::vector<std::uint8_t>> thread_ivs KY_GUARDED_BY(mutex);
  std::vector<std::uint8_t> wrapped_key;
  std::uint32_t block_length = 0;
  std::uint32_t main_thread_id KY_GUARDED_BY(mutex) = 0;
  // Second streams of threads that started twice: they stay open to the end.
  std::vector<diagnostics::LogStreamOwner> unused_streams KY_GUARDED_BY(mutex);
};

}  // namespace ky
