#pragma once

#include <string>
#include <system_error>
#include <utility>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/types.h"

namespace base::fs {

/// What cannot be read of the file system, raised: a Windows code, what was tried, and where.
class filesystem_error : public std::system_error {
 public:
  filesystem_error(ports::ErrorCode code, const char* what, std::wstring path)
      : std::system_error(static_cast<int>(code), winapi::details::win_error_category(), what),
        path_(std::move(path)) {}

  [[nodiscard]] const std::wstring& path() const noexcept { return path_; }

 private:
  std::wstring path_;
};

}  // namespace base::fs
