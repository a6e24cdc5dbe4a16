#include "platform/machine/crashes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "installer/utils/base/strings/utf8.h"
#include "platform/machine/files.h"

namespace machine {

namespace {

[[nodiscard]] bool is_fault(ports::StopKind kind) {
  return kind != ports::StopKind::step_limit && kind != ports::StopKind::deadlock && kind != ports::StopKind::own_end;
}

void put(std::vector<std::uint8_t>& to, std::uint64_t number, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) to.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

/// MINIDUMP_HEADER, one MINIDUMP_DIRECTORY and the text.
[[nodiscard]] std::vector<std::uint8_t> minidump(ports::DumpKind kind, std::string_view reason) {
  constexpr std::uint32_t header_size = 32;
  constexpr std::uint32_t directory_size = 12;
  constexpr std::uint32_t comment_stream = 10;  // CommentStreamA
  std::vector<std::uint8_t> bytes{'M', 'D', 'M', 'P'};
  put(bytes, 0xA793, 4);  // MINIDUMP_VERSION
  put(bytes, 1, 4);       // streams
  put(bytes, header_size, 4);
  put(bytes, 0, 4);  // checksum
  put(bytes, 0, 4);  // time
  put(bytes, static_cast<std::uint32_t>(kind), 8);
  put(bytes, comment_stream, 4);
  put(bytes, reason.size(), 4);
  put(bytes, header_size + directory_size, 4);
  bytes.insert(bytes.end(), reason.begin(), reason.end());
  return bytes;
}

}  // namespace

bool Crashes::write_dump(ports::Handle file, ports::DumpKind kind, ports::ExceptionPointers* exception) {
  const auto* const reason = reinterpret_cast<const ports::StopReason*>(exception);
  const std::string text = reason == nullptr ? std::string() : base::strings::to_utf8(reason->text);
  std::uint32_t written = 0;
  return files_.write(file, minidump(kind, text), written);
}

void Crashes::fault(const ports::StopReason& reason) {
  if (!is_fault(reason.kind)) return;
  ports::CrashFilter* const filter = filter_.exchange(nullptr);
  if (filter == nullptr) return;
  ports::StopReason seen = reason;
  static_cast<void>(filter->on_crash(reinterpret_cast<ports::ExceptionPointers*>(&seen)));
}

}  // namespace machine
