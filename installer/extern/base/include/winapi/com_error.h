#pragma once

#include <exception>

#include "platform/ports/types.h"

namespace winapi {

/// A COM failure raised as an exception. It leaves `LoadCiphered` and `LoadPlain` for a null attribute map, and
/// `Execute` where there is no memory for a text that COM is given.
class com_error : public std::exception {
 public:
  explicit com_error(ports::Result code) : code_(code) {}
  [[nodiscard]] ports::Result code() const noexcept { return code_; }
  [[nodiscard]] const char* what() const noexcept override { return "COM error"; }

 private:
  ports::Result code_;
};

}  // namespace winapi
