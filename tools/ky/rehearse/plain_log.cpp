#include "tools/ky/rehearse/plain_log.h"

#include "installer/utils/base/strings/format.h"
#include "installer/utils/base/strings/utf8.h"

namespace rehearsal {

void PlainLog::WriteFormatted(const wchar_t* format, std::va_list arguments) {
  WriteLine(base::strings::format_v(format, arguments).c_str());
}

void PlainLog::WriteLine(const wchar_t* text) {
  if (text == nullptr || *text == L'\0') return;
  const ports::LocalTime now = clock_.local();
  std::string record = base::strings::format("[%02i:%02i:%02i:%03i] ", std::int32_t{now.hour}, std::int32_t{now.minute},
                                             std::int32_t{now.second}, std::int32_t{now.millisecond});
  record += base::strings::to_utf8(text);
  if (record.back() != '\n') record.push_back('\n');
  const ports::Lock lock(mutex_);
  sink_(record);
}

void PlainLog::StartThreadLog(const wchar_t* description, bool) {
  WriteLine(description == nullptr ? L"Thread starts" : description);
}

// Clear text has neither a key nor merged files.
void PlainLog::SetXorKey(const char*) {}
void PlainLog::SetMergedNameTag(const wchar_t*) {}

}  // namespace rehearsal
