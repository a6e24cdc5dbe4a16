#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "diagnostics/reader/session_key.h"
#include "platform/ports/cng.h"
#include "tools/ky/desk_engines.h"

namespace support {

/// Makes sealed logs of any content, for the development key pair.
class LogMaker {
 public:
  /// The session key is this byte all over.
  static constexpr std::uint8_t key_byte = 0x5A;

  explicit LogMaker(std::wstring algorithm = L"AES", std::size_t key_size = 32);
  ~LogMaker();
  LogMaker(const LogMaker&) = delete;
  LogMaker& operator=(const LogMaker&) = delete;

  [[nodiscard]] const std::string& header() const { return header_; }
  /// `time` is "hh:mm:ss:mmm".
  [[nodiscard]] std::string record(std::string_view time, std::wstring_view message);
  /// A thread's first record, of 14 November 2025.
  [[nodiscard]] std::string first_record(std::string_view time, std::uint32_t thread);

  /// An opener with the development private key, or another one.
  [[nodiscard]] const diagnostics::reader::KeyOpener& keys() const { return keys_; }
  [[nodiscard]] ports::Cng& cng() { return desk_.engines().cng(); }

 private:
  workbench::DeskEngines desk_;
  diagnostics::reader::KeyOpener keys_;
  ports::CngAlgorithm algorithm_ = ports::CngAlgorithm::null;
  ports::CngKey key_ = ports::CngKey::null;
  std::uint32_t block_ = 0;
  std::string header_;
};

}  // namespace support
