#include "installer/extern/base/include/winapi/win_error_category.h"

#include <string>

#include "platform/ports/system.h"
#include "platform/ports/text.h"

namespace winapi {

namespace {

class WinErrorCategory final : public std::error_category {
 public:
  [[nodiscard]] const char* name() const noexcept override { return "win"; }
  [[nodiscard]] std::string message(int code) const override {
    std::string text = ports::system().text.system_message(static_cast<ports::ErrorCode>(code));
    return text.empty() ? "unknown error " + std::to_string(code) : text;
  }
};

const WinErrorCategory category{};

}  // namespace

const std::error_category& details::win_error_category() noexcept {
  return category;
}

std::error_code error_of(ports::ErrorCode code) noexcept {
  return {static_cast<int>(code), category};
}

std::error_code last_error() {
  return error_of(ports::system().errors.last());
}

void raise(ports::ErrorCode code, const char* what) {
  throw std::system_error(static_cast<int>(code), category, what);
}

void raise_last_error(const char* what) {
  raise(ports::system().errors.last(), what);
}

}  // namespace winapi
