#include "platform/machine/code_pages.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "installer/utils/base/strings/utf8.h"
#include "installer/utils/base/strings/windows_1252.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;

namespace {

constexpr std::uint32_t code_page_1252 = 1252;
constexpr std::uint32_t refuse_ill_formed = 8;  // MB_ERR_INVALID_CHARS

using base::strings::windows_1252_upper;

[[nodiscard]] std::wstring from_1252(std::string_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    out.push_back(byte >= 0x80 && byte < 0xA0 ? windows_1252_upper[byte - 0x80U] : static_cast<wchar_t>(byte));
  }
  return out;
}

[[nodiscard]] std::string to_1252(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (const wchar_t unit : text) {
    if (unit < 0x80) {
      out.push_back(static_cast<char>(unit));
      continue;
    }
    const auto* const found = std::find(windows_1252_upper.begin(), windows_1252_upper.end(), unit);
    if (found != windows_1252_upper.end()) {
      out.push_back(static_cast<char>(static_cast<unsigned char>(0x80 + (found - windows_1252_upper.begin()))));
    } else {
      const bool there = unit >= 0xA0 && unit < 0x100;
      out.push_back(there ? static_cast<char>(static_cast<unsigned char>(unit)) : '?');
    }
  }
  return out;
}

// The arguments' part of both conversions: the source as a view, or an error.
template <class Unit, class Target>
[[nodiscard]] ports::ErrorCode source_of(std::uint32_t code_page, const Unit* source, std::int32_t length,
                                         const Target* destination, std::int32_t room,
                                         std::basic_string_view<Unit>& out) {
  const bool known =
      code_page == ports::code_page::active || code_page == ports::code_page::utf8 || code_page == code_page_1252;
  if (!known || source == nullptr || length == 0 || length < -1 || room < 0) return code::invalid_parameter;
  if (room > 0 && destination == nullptr) return code::invalid_parameter;
  const std::size_t count =
      length == -1 ? std::char_traits<Unit>::length(source) + 1 : static_cast<std::size_t>(length);
  out = {source, count};
  return code::success;
}

template <class Unit>
[[nodiscard]] std::int32_t deliver(const std::basic_string<Unit>& text, Unit* destination, std::int32_t room,
                                   ports::Errors& errors) {
  if (room == 0) return static_cast<std::int32_t>(text.size());
  const bool fits = text.size() <= static_cast<std::size_t>(room);
  std::copy_n(text.begin(), fits ? text.size() : static_cast<std::size_t>(room), destination);
  if (fits) return static_cast<std::int32_t>(text.size());
  errors.set_last(code::insufficient_buffer);
  return 0;
}

}  // namespace

std::int32_t CodePages::to_wide(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                std::int32_t source_length, wchar_t* destination, std::int32_t destination_length) {
  std::string_view text;
  ports::ErrorCode error = source_of(code_page, source, source_length, destination, destination_length, text);
  const bool utf8 = code_page == ports::code_page::utf8;
  if (error == code::success && utf8 && (flags & refuse_ill_formed) != 0 && base::strings::first_ill_formed(text)) {
    error = code::no_unicode_translation;
  }
  if (error != code::success) {
    errors_.set_last(error);
    return 0;
  }
  if (utf8 && static_cast<std::size_t>(destination_length) >= text.size()) {
    return static_cast<std::int32_t>(base::strings::to_wide(text, destination));
  }
  return deliver(utf8 ? base::strings::to_wide(text) : from_1252(text), destination, destination_length, errors_);
}

std::int32_t CodePages::to_narrow(std::uint32_t code_page, std::uint32_t /*flags*/, const wchar_t* source,
                                  std::int32_t source_length, char* destination, std::int32_t destination_length) {
  std::wstring_view text;
  const ports::ErrorCode error = source_of(code_page, source, source_length, destination, destination_length, text);
  if (error != code::success) {
    errors_.set_last(error);
    return 0;
  }
  const bool utf8 = code_page == ports::code_page::utf8;
  return deliver(utf8 ? base::strings::to_utf8(text) : to_1252(text), destination, destination_length, errors_);
}

}  // namespace machine
