#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/ports/signatures.h"

namespace machine {

/// Who signed a file, and what the system makes of it.
struct Signature {
  std::wstring subject;
  std::wstring issuer;
  std::vector<std::uint8_t> serial;  // least byte first
  ports::Result trust = ports::trust::trusted;
  bool certificate = true;  // the signer's own is in the signature
  friend bool operator==(const Signature&, const Signature&) = default;
};

}  // namespace machine
