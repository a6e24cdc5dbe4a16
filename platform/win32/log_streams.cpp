#include "platform/win32/log_streams.h"

#include <io.h>
#include <share.h>

#include <algorithm>
#include <cstdio>

namespace win32 {

using ports::LogMode;
using ports::LogStream;

namespace {

// Holds the longest records whole, so that a flush is one call of the system.
constexpr std::size_t buffer_size = 65536;

[[nodiscard]] std::FILE* native(LogStream stream) {
  return reinterpret_cast<std::FILE*>(stream);
}

// Never with "ccs=UTF-8": a runtime that turns text into that may drop bytes of others, however binary the mode.
[[nodiscard]] const wchar_t* text_of(LogMode mode) {
  switch (mode) {
    case LogMode::append:
      return L"ab+";
    case LogMode::write:
      return L"wb";
    case LogMode::read:
      break;
  }
  return L"rb";
}

}  // namespace

LogStream LogStreams::open(const wchar_t* path, LogMode mode) {
  std::FILE* const file = _wfsopen(path, text_of(mode), _SH_DENYNO);
  if (file != nullptr && mode != LogMode::read) std::setvbuf(file, nullptr, _IOFBF, buffer_size);
  return LogStream{reinterpret_cast<std::uintptr_t>(file)};
}

std::uint64_t LogStreams::length(LogStream stream) {
  return static_cast<std::uint64_t>(std::max(0LL, _filelengthi64(_fileno(native(stream)))));
}

std::size_t LogStreams::write(LogStream stream, std::span<const std::uint8_t> bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), native(stream));
}

bool LogStreams::flush(LogStream stream) {
  return std::fflush(native(stream)) == 0;
}

std::size_t LogStreams::read(LogStream stream, std::span<std::uint8_t> into) {
  return std::fread(into.data(), 1, into.size(), native(stream));
}

bool LogStreams::skip(LogStream stream, std::uint32_t bytes) {
  return _fseeki64(native(stream), bytes, SEEK_CUR) == 0;
}

void LogStreams::close(LogStream stream) {
  if (stream != LogStream::null) std::fclose(native(stream));
}

}  // namespace win32
