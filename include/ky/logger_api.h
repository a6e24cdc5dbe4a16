#pragma once

#include <cstdarg>

#include "ky/self_free.h"

namespace ky {

/// The run's log, found under the key `SelfFree_LoggerApi`. Any thread may call the first two operations.
class ILoggerApi : public CSelfFree {
 public:
  /// Formats with Microsoft's printf rules ("%s" wide, "%S" narrow) and hands the text to `WriteLine`.
  virtual void WriteFormatted(const wchar_t* format, std::va_list arguments) = 0;
  /// Appends one record. A null or empty text does nothing. The text carries its own line end.
  virtual void WriteLine(const wchar_t* text) = 0;
  /// Opens the calling thread's log before its first record; `description` may be null. The thread that passes
  /// `is_main_thread` receives the records of threads that never call this.
  virtual void StartThreadLog(const wchar_t* description, bool is_main_thread) = 0;
  /// Selects the scrambled form with `key`, a NUL-terminated string of key bytes.
  virtual void SetXorKey(const char* key) = 0;
  /// Text that stands behind the label in the merged file's name.
  virtual void SetMergedNameTag(const wchar_t* tag) = 0;

 protected:
  ILoggerApi() = default;
  ~ILoggerApi() = default;
};

}  // namespace ky
