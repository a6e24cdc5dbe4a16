#pragma once

#include <cstdint>
#include <string>

#include "platform/ports/types.h"

namespace record {

/// A process that was looked at or opened in order to be closed, and how far that went.
struct SeenProcess {
  std::uint32_t id = 0;
  std::wstring name;  // in the system's list
  /// Of its executable; empty where nobody asked, or the answer was `path_error`.
  std::wstring path;
  bool path_asked = false;
  ports::ErrorCode path_error = 0;
  bool opened = false;              // to wait for it or to terminate it
  ports::ErrorCode open_error = 0;  // of the last attempt that failed
  bool let_go = false;              // opened, and closed again without having been waited for or terminated
  bool terminated = false;
  ports::ErrorCode terminate_error = 0;
  bool runs = true;  // still, as far as can be told
  friend bool operator==(const SeenProcess&, const SeenProcess&) = default;
};

}  // namespace record
