#include "installer/desktop/commands/base/decipher.h"

#include <cstdint>
#include <cwchar>
#include <span>
#include <string>

#include "installer/desktop/commands/base/global_data.h"
#include "installer/utils/base/stop.h"
#include "platform/ports/codes.h"
#include "platform/ports/script_cipher.h"
#include "platform/ports/system.h"
#include "platform/ports/text.h"

namespace ky {

namespace {

void replace_all(wchar_t* text, std::size_t length, wchar_t from, wchar_t to) {
  for (wchar_t* at = std::wmemchr(text, from, length); at != nullptr;
       at = std::wmemchr(at, from, length - static_cast<std::size_t>(at - text))) {
    *at = to;
  }
}

/// Copies `value` without its first character into the staging buffer, in the standard alphabet; gives the length.
std::uint32_t stage(Decrypter& decrypter, const wchar_t* value) {
  const std::size_t length = std::wcslen(value) - 1;
  if (length >= Decrypter::capacity) base::stop_invalid_parameter(L"decipher: value too long", value);
  std::wmemcpy(decrypter.staging, value + 1, length + 1);
  replace_all(decrypter.staging, length, L'-', L'+');
  replace_all(decrypter.staging, length, L'_', L'/');
  replace_all(decrypter.staging, length, L'.', L'=');
  return static_cast<std::uint32_t>(length);
}

}  // namespace

const wchar_t* DecipherValue(Decrypter& decrypter, const wchar_t* value) {
  decrypter.text[0] = L'\0';
  if (value == nullptr) return decrypter.text;
  if (*value == L'\0') base::stop_invalid_parameter(L"decipher: empty value", L"a value has at least its prefix");
  const std::uint32_t length = stage(decrypter, value);
  const ports::System& system = ports::system();
  std::uint32_t size = 0;
  if (!system.cipher.decode_base64(decrypter.staging, length, decrypter.binary, size) ||
      !system.cipher.decrypt(decrypter.key, decrypter.binary, size)) {
    return system.errors.last() != ports::code::success ? nullptr : decrypter.text;
  }
  decrypter.binary[size] = 0;  // padding is at least one byte, so there is room
  const auto with_terminator = static_cast<std::int32_t>(size) + 1;
  decrypter.converter->MultiByteToWideChar(ports::code_page::utf8, 0, reinterpret_cast<const char*>(decrypter.binary),
                                           with_terminator, decrypter.text, with_terminator);
  return decrypter.text;
}

const wchar_t* DecipherOrStop(Decrypter& decrypter, const wchar_t* value) {
  const wchar_t* const text = DecipherValue(decrypter, value);
  if (text == nullptr) base::stop_null_value(L"decipher: value does not decipher", value);
  return text;
}

Decrypter& HostDecrypter() {
  Decrypter* const decrypter = Get(keys::SelfFree_Decrypter);
  if (decrypter == nullptr) base::stop_null_value(L"decipher: no decrypter", L"SelfFree_Decrypter is empty");
  return *decrypter;
}

}  // namespace ky
