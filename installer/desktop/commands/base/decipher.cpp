#include "installer/desktop/commands/base/decipher.h"

#include <algorithm>
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

/// Differences instead of choices, so that several digits go at once.
wchar_t standard(wchar_t digit) {
  const auto turned = [digit](wchar_t from, wchar_t to) { return digit == from ? from ^ to : 0; };
  return static_cast<wchar_t>(digit ^ turned(L'-', L'+') ^ turned(L'_', L'/') ^ turned(L'.', L'='));
}

/// Copies `value` without its first character into the staging buffer, in the standard alphabet; gives the length.
std::uint32_t stage(Decrypter& decrypter, const wchar_t* value) {
  const std::size_t length = std::wcslen(value) - 1;
  if (length >= Decrypter::capacity) base::stop_invalid_parameter(L"decipher: value too long", value);
  std::transform(value + 1, value + length + 2, decrypter.staging, standard);
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
