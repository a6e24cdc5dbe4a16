#include "platform/win32/code_pages.h"

#include <windows.h>

#include <cstddef>

namespace win32 {

std::int32_t CodePages::to_wide(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                std::int32_t source_length, wchar_t* destination, std::int32_t destination_length) {
  return MultiByteToWideChar(code_page, flags, source, source_length, destination, destination_length);
}

std::int32_t CodePages::to_narrow(std::uint32_t code_page, std::uint32_t flags, const wchar_t* source,
                                  std::int32_t source_length, char* destination, std::int32_t destination_length) {
  return WideCharToMultiByte(code_page, flags, source, source_length, destination, destination_length, nullptr,
                             nullptr);
}

std::string CodePages::system_message(ports::ErrorCode code) {
  constexpr std::size_t room = 32767;
  std::string text(room, '\0');
  const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                      text.data(), room, nullptr);
  text.resize(length);
  return text;
}

}  // namespace win32
