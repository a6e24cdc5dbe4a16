#include "installer/utils/base/strings/string_convert.h"

#include <cstddef>
#include <cstdint>

#include "installer/utils/base/stop.h"
#include "platform/ports/system.h"
#include "platform/ports/text.h"

namespace base::strings {

namespace {

bool narrow(std::uint32_t code_page, const wchar_t* text, std::string& out) {
  ports::CodePages& pages = ports::system().text;
  const std::int32_t size = pages.to_narrow(code_page, 0, text, -1, nullptr, 0);
  if (size <= 0) return false;
  out.assign(static_cast<std::size_t>(size), '\0');
  const std::int32_t written = pages.to_narrow(code_page, 0, text, -1, out.data(), size);
  if (written <= 0) return false;
  out.resize(static_cast<std::size_t>(written) - 1);  // the terminator was counted
  return true;
}

}  // namespace

std::string wide_to_utf8(const wchar_t* s) {
  if (s == nullptr) stop_assertion(L"s");
  std::string out;
  return narrow(ports::code_page::utf8, s, out) ? out : std::string();
}

std::wstring utf8_to_wide(const char* s) {
  if (s == nullptr) stop_assertion(L"s");
  ports::CodePages& pages = ports::system().text;
  const std::int32_t size = pages.to_wide(ports::code_page::utf8, 0, s, -1, nullptr, 0);
  if (size <= 0) return {};
  std::wstring out(static_cast<std::size_t>(size), L'\0');
  const std::int32_t written = pages.to_wide(ports::code_page::utf8, 0, s, -1, out.data(), size);
  if (written <= 0) return {};
  out.resize(static_cast<std::size_t>(written) - 1);
  return out;
}

bool to_active_code_page(const wchar_t* text, std::string& out) {
  return narrow(ports::code_page::active, text, out);
}

}  // namespace base::strings
