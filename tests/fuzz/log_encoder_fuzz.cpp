#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "diagnostics/log_format.h"
#include "diagnostics/log_lines.h"
#include "diagnostics/reader/unscrambler.h"
#include "diagnostics/sealing.h"
#include "installer/utils/base/strings/utf8.h"
#include "tests/support/bare_machine.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A system with the build's cryptography.
struct World {
  World() { ports::bind(desk.system); }
  const support::BareMachine desk;
};
const ports::System& system() {
  static const World made;
  return made.desk.system;
}

void expect(bool holds) {
  if (!holds) std::abort();
}

void seal_and_open(const diagnostics::TimeStamp& stamp, const std::wstring& message) {
  static const diagnostics::CngAlgorithmOwner algorithm = diagnostics::open_algorithm(L"AES");
  static const diagnostics::CngKeyOwner key = diagnostics::generate_key(algorithm.get(), Bytes(16, 7));
  diagnostics::Scratch<std::uint8_t> scratch;
  const auto line = diagnostics::plain_line(stamp, message, scratch);
  Bytes iv(16);
  Bytes bytes = diagnostics::encrypt_buffer(key.get(), line, iv, ports::cng_padding::block);
  expect(bytes.size() % 16 == 0 && bytes.size() > line.size());
  std::fill(iv.begin(), iv.end(), std::uint8_t{0});
  std::uint32_t size = 0;
  expect(system().cng.decrypt(key.get(), bytes, iv, bytes, size, ports::cng_padding::block) == 0);
  bytes.resize(size);
  std::wstring back;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    back.push_back(static_cast<wchar_t>(bytes[i] | bytes[i + 1] << 8));
  }
  expect(back == std::wstring(stamp.begin(), stamp.end()) + message + L'\n');
}

/// Two things do not come back: a byte of a line feed, and a character that becomes half a pair or U+FFFD.
void scramble_and_turn_back(const diagnostics::TimeStamp& stamp, const std::wstring& message) {
  namespace log_format = diagnostics::log_format;
  static const Bytes key(log_format::fall_back_key.begin(), log_format::fall_back_key.end());
  static const diagnostics::reader::Unscrambler unscrambler(log_format::fall_back_key);
  diagnostics::Scratch<std::uint8_t> scratch;
  const auto bytes = diagnostics::scrambled_line(stamp, message, key, scratch);
  const std::string line(bytes.begin(), bytes.end());
  expect(line.starts_with(std::string(stamp.begin(), stamp.end())) && line.ends_with(log_format::line_end));
  const std::string text = line.substr(stamp.size(), line.size() - stamp.size() - log_format::line_end.size());
  expect(base::strings::is_utf8(text) && text.find('\n') == std::string::npos && text.find('\0') == std::string::npos);
  std::wstring back;
  unscrambler.turn_back(text, back);
  const std::wstring stored = message.substr(0, message.size() - 1);
  expect(back.size() == stored.size());
  const bool ambiguous = base::strings::to_wide(text).find(L'\xFFFD') != std::wstring::npos ||
                         std::any_of(stored.begin(), stored.end(),
                                     [](wchar_t unit) { return (unit & 0xFF) == 0x0A || unit >> 8 == 0x0A; });
  expect(ambiguous || back == stored);
}

}  // namespace

/// Any text that is logged comes back from both forms.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static_cast<void>(system());
  std::wstring message;
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    const int unit = data[i] | data[i + 1] << 8;
    if (unit != 0) message.push_back(static_cast<wchar_t>(unit));
  }
  if (message.empty()) return 0;
  const diagnostics::TimeStamp stamp = diagnostics::time_stamp({2024, 5, 14, 7, 30, 9, 42});
  seal_and_open(stamp, message);
  scramble_and_turn_back(stamp, message);
  return 0;
}
