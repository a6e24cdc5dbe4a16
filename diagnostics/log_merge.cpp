#include "diagnostics/log_merge.h"

#include <array>

#include "diagnostics/log_format.h"
#include "diagnostics/log_lines.h"
#include "platform/ports/files.h"

namespace diagnostics {

namespace {

/// Steps over a key header. False where the file has none.
[[nodiscard]] bool skip_key_header(ports::LogStream part) {
  ports::LogStreams& streams = ports::system().log_streams;
  std::array<std::uint8_t, log_format::length_size> length;
  return streams.read(part, length) == length.size() && streams.skip(part, length_in(length));
}

}  // namespace

void write_key_header(ports::LogStream stream, std::span<const std::uint8_t> wrapped_key) {
  std::array<std::uint8_t, log_format::length_size> length;
  put_length(length, static_cast<std::uint32_t>(wrapped_key.size()));
  ports::LogStreams& streams = ports::system().log_streams;
  streams.write(stream, length);
  streams.write(stream, wrapped_key);
}

LogMerge::LogMerge(const std::wstring& path, bool sealed, std::span<const std::uint8_t> wrapped_key)
    : sealed_(sealed), merged_(open_log(path, ports::LogMode::write)), whole_(merged_.open()) {
  if (whole_ && sealed_) write_key_header(merged_.get(), wrapped_key);
}

void LogMerge::take(const std::wstring& path) {
  if (!whole_) return;
  {
    const LogStreamOwner part = open_log(path, ports::LogMode::read);
    if (!part.open() || (sealed_ && !skip_key_header(part.get()))) return;
    whole_ = copy(part.get());
  }
  if (whole_) ports::system().files.remove(path.c_str());
}

bool LogMerge::copy(ports::LogStream part) {
  ports::LogStreams& streams = ports::system().log_streams;
  std::array<std::uint8_t, log_format::merge_piece> piece;
  while (const std::size_t got = streams.read(part, piece)) {
    if (streams.write(merged_.get(), std::span(piece).first(got)) != got) return false;
  }
  return streams.flush(merged_.get());
}

}  // namespace diagnostics
