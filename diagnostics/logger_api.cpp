#include "diagnostics/logger_api.h"

#include <algorithm>
#include <cwchar>
#include <exception>
#include <new>
#include <utility>

#include "diagnostics/log_format.h"
#include "diagnostics/log_merge.h"
#include "installer/utils/base/strings/format.h"
#include "platform/ports/clock.h"
#include "platform/ports/threads.h"

namespace ky {

namespace log_format = diagnostics::log_format;
using diagnostics::LogStreamOwner;
using diagnostics::Scratch;

CLoggerApi::CLoggerApi() : start_time(static_cast<std::uint64_t>(ports::system().clock.seconds_since_1970())) {}

// No lock: all threads are done.
CLoggerApi::~CLoggerApi() {
  try {
    Merge();
  } catch (const std::bad_alloc&) {
    // The thread files stay, each readable by itself.
  }
}

bool CLoggerApi::SetupEncryption(const wchar_t* identifier, std::int32_t key_bits) {
  try {
    algorithm = diagnostics::open_algorithm(identifier);
    const std::vector<std::uint8_t> secret = diagnostics::random_bytes(static_cast<std::size_t>(key_bits / 8));
    session_key = diagnostics::generate_key(algorithm.get(), secret);
    block_length = diagnostics::block_length(session_key.get());
    wrapped_key = diagnostics::wrap_session_key(session_key.get());
    return true;
  } catch (const std::exception&) {
    algorithm.reset();
    session_key.reset();
    return false;
  }
}

void CLoggerApi::SetXorKey(const char* key) {
  const std::string_view bytes(key);
  xor_key.assign(bytes.begin(), bytes.end());
}

void CLoggerApi::SetMergedNameTag(const wchar_t* tag) {
  merged_name_tag = tag;
}

void CLoggerApi::StartThreadLog(const wchar_t* description, bool is_main_thread) {
  const std::uint32_t thread = ports::system().threads.current_id();
  if (is_main_thread) main_thread_id = thread;
  LogStreamOwner opened = diagnostics::open_log(ThreadPath(thread), ports::LogMode::append);
  const ports::LogStream stream = opened.get();
  // A thread that has an entry keeps it, also one without a stream, which its first record made.
  ThreadLog made{std::move(opened), {}};
  if (!thread_logs.try_emplace(thread, std::move(made)).second) {
    const ports::Lock lock(mutex);
    unused_streams.push_back(std::move(made.stream));
  }
  if (stream != ports::LogStream::null) WriteHead(stream);
  const ports::LocalTime now = ports::system().clock.local();
  Write(log_format::first_record, thread, description == nullptr ? L"No description" : description,
        std::int32_t{now.day}, std::int32_t{now.month}, std::int32_t{now.year});
}

void CLoggerApi::Write(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  WriteFormatted(format, arguments);
  va_end(arguments);
}

void CLoggerApi::WriteFormatted(const wchar_t* format, std::va_list arguments) {
  try {
    WriteLine(base::strings::format_v(format, arguments).c_str());
  } catch (const std::bad_alloc&) {
    // The record is lost.
  }
}

void CLoggerApi::WriteLine(const wchar_t* text) {
  if (text == nullptr || *text == L'\0') return;
  const ports::System& system = ports::system();
  const std::uint32_t thread = system.threads.current_id();
  try {
    ThreadLog& log = LogOf(thread);
    const ports::LogStream stream = StreamOf(log);
    if (stream == ports::LogStream::null) return;
    const diagnostics::TimeStamp stamp = diagnostics::time_stamp(system.clock.local());
    Scratch<std::uint8_t> scratch;
    const std::span<const std::uint8_t> record = EncodeRecord(stamp, text, log.iv, scratch);
    if (record.empty()) return;
    system.log_streams.write(stream, record);
    system.log_streams.flush(stream);
  } catch (const std::bad_alloc&) {
    // The record is lost.
  }
}

/// Length and body in one piece, so that threads which share a stream do not come between the two.
std::span<const std::uint8_t> CLoggerApi::EncodeRecord(const diagnostics::TimeStamp& stamp, std::wstring_view message,
                                                       std::vector<std::uint8_t>& iv,
                                                       Scratch<std::uint8_t>& into) const {
  if (!Sealed()) return diagnostics::scrambled_line(stamp, message, xor_key, into);
  try {
    // Each record starts from zero, so that a lost or damaged one costs only itself.
    iv.assign(block_length, std::uint8_t{0});
    Scratch<std::uint8_t> scratch;
    const std::span<const std::uint8_t> plain = diagnostics::plain_line(stamp, message, scratch);
    constexpr std::uint32_t padding = ports::cng_padding::block;
    const std::uint32_t most = diagnostics::encrypted_size(session_key.get(), plain, iv, padding);
    const std::span<std::uint8_t> record = into.take(log_format::length_size + most);
    const std::uint32_t size =
        diagnostics::encrypt_into(session_key.get(), plain, iv, padding, record.subspan(log_format::length_size));
    diagnostics::put_length(record, size);
    return record.first(log_format::length_size + size);
  } catch (const std::exception&) {
    return {};
  }
}

CLoggerApi::ThreadLog& CLoggerApi::LogOf(std::uint32_t thread) {
  ThreadLog* const known = thread_logs.find(thread);
  return known != nullptr ? *known : *thread_logs.try_emplace(thread, {}).first;
}

ports::LogStream CLoggerApi::StreamOf(const ThreadLog& log) {
  if (log.stream.open()) return log.stream.get();
  const ThreadLog* const main = thread_logs.find(main_thread_id);
  return main == nullptr ? ports::LogStream::null : main->stream.get();
}

std::wstring CLoggerApi::ThreadPath(std::uint32_t thread) const {
  return diagnostics::log_path(diagnostics::thread_file_name(Run(), thread));
}

/// What a file begins with: the key header, or of a new text file its byte order mark.
void CLoggerApi::WriteHead(ports::LogStream stream) const {
  ports::LogStreams& streams = ports::system().log_streams;
  if (Sealed()) {
    diagnostics::write_key_header(stream, wrapped_key);
  } else if (streams.length(stream) == 0) {
    constexpr std::string_view mark = log_format::byte_order_mark;
    streams.write(stream, std::vector<std::uint8_t>(mark.begin(), mark.end()));
  }
  streams.flush(stream);
}

void CLoggerApi::Merge() {
  diagnostics::LogMerge merge(diagnostics::log_path(diagnostics::merged_file_name(Run(), merged_name_tag)), Sealed(),
                              wrapped_key);
  for (const auto& [thread, log] : thread_logs.all()) {
    if (!log->stream.open()) continue;
    log->stream.close();
    merge.take(ThreadPath(thread));
  }
}

}  // namespace ky
