#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/ports/registry.h"

namespace record {

/// "read-only hidden"; empty where no bit has a word. Folder and link bits are the kind's, not the text's.
[[nodiscard]] std::wstring describe_attributes(std::uint32_t attributes);

/// `REG_SZ "text"`, `REG_DWORD 0x00000001`, `REG_BINARY 01 02`. More than 64 bytes of binary data are cut and followed
/// by their size and digest, so that equal texts mean equal values.
[[nodiscard]] std::wstring describe_value(const ports::RegistryValue& value);

/// FNV-1a over bytes that come in pieces.
class Digest {
 public:
  void add(std::span<const std::uint8_t> bytes);
  [[nodiscard]] std::wstring text() const;

 private:
  std::uint64_t state_ = 0xCBF29CE484222325;
};

}  // namespace record
