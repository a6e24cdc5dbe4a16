#include "diagnostics/error_api.h"

#include <cwchar>
#include <string>

#include "installer/desktop/commands/base/trace.h"
#include "installer/utils/base/stop.h"
#include "installer/utils/base/strings/bounded.h"
#include "installer/utils/base/strings/format.h"
#include "platform/ports/codes.h"

namespace ky {

namespace {

constexpr std::size_t line_room = 1024;
// A page of characters as the system has them, two bytes each.
constexpr std::uint64_t page_bytes = 4096;
constexpr std::uint64_t character_bytes = 2;

constexpr wchar_t source_too_long[] = L"error text: source too long";

std::wstring line_of(std::uint32_t code, const wchar_t* source, const wchar_t* format, std::va_list arguments) {
  std::wstring line =
      base::strings::bounded(base::strings::format(L"Error: 0x%X|%s|", code, source), line_room, source_too_long);
  // What is left without the line feed, the message's terminator included; a bounded format refuses no room at all.
  const std::size_t room = line_room - 1 - line.size();
  if (room == 0) base::stop_invalid_parameter(source_too_long, line);
  line.append(base::strings::format_v(format, arguments), 0, room - 1);
  line.resize(std::wcslen(line.c_str()));
  return line;
}

}  // namespace

void CErrorApi::AddError(std::uint32_t code, const wchar_t* source, const wchar_t* format, std::va_list arguments) {
  const std::wstring line = line_of(code, source, format, arguments);
  const ports::Lock locked(lock);
  if (!MakeRoom(line.size() + 2)) {
    Trace(L"Could not allocate space for error buffer. errCode:%d\n", ports::code::not_enough_memory);
    return;
  }
  end = std::wmemcpy(end, line.data(), line.size()) + line.size();
  *end++ = L'\n';
  *end = L'\0';
  length += line.size() + 1;
}

bool CErrorApi::MakeRoom(std::uint64_t more) {
  if (length + more <= capacity) return true;
  const std::uint64_t bytes = ((length + more) * character_bytes + page_bytes - 1) / page_bytes * page_bytes;
  const std::uint64_t wanted = bytes / character_bytes;
  auto* const grown = static_cast<wchar_t*>(std::realloc(text.get(), wanted * sizeof(wchar_t)));
  if (grown == nullptr) return false;
  static_cast<void>(text.release());
  text.reset(grown);
  end = grown + length;
  capacity = wanted;
  return true;
}

std::uint32_t CErrorApi::GetErrors(wchar_t* buffer, std::uint64_t* size) {
  const ports::Lock locked(lock);
  // One less than the text, and without a text the greatest number of all: deliberately so, hosts ask by it.
  if (*size < length - 1) {
    *size = length + 1;
    return ports::code::insufficient_buffer;
  }
  if (text == nullptr || *size <= length)
    base::stop_invalid_parameter(L"error text: buffer too small", std::to_wstring(*size));
  std::wmemcpy(buffer, text.get(), length + 1);
  return ports::code::success;
}

}  // namespace ky
