#pragma once

#include <cstdarg>
#include <cstdint>

#include "ky/self_free.h"

namespace ky {

/// The run's errors as one growing text, found under the key `SelfFree_ErrorApi`. It is there for the host: no command
/// writes to it or reads it. Any thread.
class IErrorApi : public CSelfFree {
 public:
  /// Appends the line "Error: 0xCODE|source|message" and a line feed. `format` follows the rules of
  /// `ILoggerApi::WriteFormatted`. A line has 1,022 characters at most: the message is cut, a source that leaves no
  /// room stops the process.
  virtual void AddError(std::uint32_t code, const wchar_t* source, const wchar_t* format, std::va_list arguments) = 0;

  /// Copies the text with its terminator to `buffer`, which has `*size` characters, and gives 0. Where it is too small
  /// gives 122 and sets `*size` to what is needed; also 122, and 1, as long as there is no text. Ask with a size of 0,
  /// then offer what was answered: a size of one or two characters too few stops the process.
  virtual std::uint32_t GetErrors(wchar_t* buffer, std::uint64_t* size) = 0;

 protected:
  IErrorApi() = default;
  ~IErrorApi() = default;
};

}  // namespace ky
