#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "installer/utils/base/strings/format.h"
#include "platform/ports/types.h"

/// The two ways to the log. Both are silent until a log stands under `SelfFree_LoggerApi`.
namespace ky {

namespace detail {
void TraceArguments(const wchar_t* format, ...);
}

/// Writes one record; `format` follows `base::strings::format` and carries its own line end.
template <class... Arguments>
void Trace(const wchar_t* format, Arguments... arguments) {
  detail::TraceArguments(format, base::strings::format_argument(arguments)...);
}

/// Builds one record from pieces and writes it, with a line feed added, at the end of its life. An empty one writes
/// nothing.
class LogStream {
 public:
  LogStream() = default;
  ~LogStream();
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;

  LogStream& operator<<(std::wstring_view text);
  /// For literals, which would otherwise be taken for words of truth.
  LogStream& operator<<(const wchar_t* text) { return *this << std::wstring_view(text); }
  LogStream& operator<<(std::int32_t number);
  LogStream& operator<<(std::uint32_t number);
  /// As a word, "true" or "false".
  LogStream& operator<<(bool value);
  /// As 16 upper-case hexadecimal digits.
  LogStream& operator<<(ports::Handle handle);

 private:
  std::wstring text_;
};

}  // namespace ky
