#pragma once

#include <system_error>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/types.h"

namespace base::xml {

/// The status of a COM call as an error code.
[[nodiscard]] inline std::error_code error_of(ports::Result status) {
  return {static_cast<int>(status), winapi::details::win_error_category()};
}

[[noreturn]] inline void raise(ports::Result status, const char* what) {
  throw std::system_error(error_of(status), what);
}

}  // namespace base::xml
