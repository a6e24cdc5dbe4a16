#include "installer/desktop/commands/base/trace.h"

#include <cstdarg>

#include "installer/desktop/commands/base/global_data.h"
#include "ky/logger_api.h"

namespace ky {

void detail::TraceArguments(const wchar_t* format, ...) {
  ILoggerApi* const log = Get(keys::SelfFree_LoggerApi);
  if (log == nullptr) return;
  std::va_list arguments;
  va_start(arguments, format);
  log->WriteFormatted(format, arguments);
  va_end(arguments);
}

LogStream::~LogStream() {
  if (text_.empty()) return;
  ILoggerApi* const log = Get(keys::SelfFree_LoggerApi);
  if (log == nullptr) return;
  text_.push_back(L'\n');
  log->WriteLine(text_.c_str());
}

LogStream& LogStream::operator<<(std::wstring_view text) {
  text_.append(text);
  return *this;
}

LogStream& LogStream::operator<<(std::int32_t number) {
  return *this << std::to_wstring(number);
}

LogStream& LogStream::operator<<(std::uint32_t number) {
  return *this << std::to_wstring(number);
}

LogStream& LogStream::operator<<(bool value) {
  return *this << std::wstring_view(value ? L"true" : L"false");
}

LogStream& LogStream::operator<<(ports::Handle handle) {
  return *this << base::strings::format(L"%016I64X", static_cast<std::uint64_t>(handle));
}

}  // namespace ky
