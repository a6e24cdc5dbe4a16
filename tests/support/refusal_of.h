#pragma once

#include <exception>
#include <string>

namespace support {

/// What the exception says that `work` ends with; "none" where it ends without one.
template <class Work>
[[nodiscard]] std::string refusal_of(Work work) {
  try {
    static_cast<void>(work());
  } catch (const std::exception& refusal) {
    return refusal.what();
  }
  return "none";
}

}  // namespace support
