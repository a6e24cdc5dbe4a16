#include "host/script/decipherer.h"

#include <array>
#include <span>

#include "installer/utils/base/strings/utf8.h"
#include "platform/ports/script_cipher.h"

namespace host {

namespace {

/// Standard base64 of each URL-safe digit; 0 for one outside the alphabet.
constexpr std::array<wchar_t, 128> standard_forms = [] {
  std::array<wchar_t, 128> forms{};
  for (wchar_t c = L'0'; c <= L'9'; ++c) forms[static_cast<std::size_t>(c)] = c;
  for (wchar_t c = L'A'; c <= L'Z'; ++c) forms[static_cast<std::size_t>(c)] = c;
  for (wchar_t c = L'a'; c <= L'z'; ++c) forms[static_cast<std::size_t>(c)] = c;
  forms[L'-'] = L'+';
  forms[L'_'] = L'/';
  return forms;
}();

wchar_t standard(wchar_t c) {
  const auto unit = static_cast<std::uint32_t>(c);
  return unit < standard_forms.size() ? standard_forms[unit] : L'\0';
}

/// Writes the standard form of `digits`; false where a character or the place of the padding is wrong.
bool to_standard(std::wstring_view digits, wchar_t* out) {
  bool good = true;
  for (std::size_t padding = 0; padding < 2 && digits.ends_with(L'.'); ++padding) {
    digits.remove_suffix(1);
    out[digits.size()] = L'=';
  }
  for (std::size_t i = 0; i < digits.size(); ++i) {
    out[i] = standard(digits[i]);
    good &= out[i] != L'\0';
  }
  return good;
}

/// A copy of `text` in `memory`.
template <class Character>
std::basic_string_view<Character> kept(std::basic_string_view<Character> text, std::pmr::memory_resource& memory) {
  auto* const copy = static_cast<Character*>(memory.allocate(text.size() * sizeof(Character), alignof(Character)));
  text.copy(copy, text.size());
  return {copy, text.size()};
}

}  // namespace

const Deciphered& Decipherer::decipher(std::wstring_view ciphered) {
  const auto found = known_.find(ciphered);
  if (found != known_.end()) return found->second;
  return known_.emplace(kept(ciphered, memory_), decipher_anew(ciphered)).first->second;
}

Deciphered Decipherer::decipher_anew(std::wstring_view ciphered) {
  if (!ciphered.starts_with(L'_')) return {"is not in the ciphered form: it does not begin with \"_\"", {}};
  const std::wstring_view digits = ciphered.substr(1);
  if (digits.empty()) return {"is not in the ciphered form: nothing follows the \"_\"", {}};
  if (digits.size() >= capacity) return {"is too long: more than 511 characters follow the \"_\"", {}};

  std::array<wchar_t, capacity> staging;
  if (digits.size() % 4 != 0 || !to_standard(digits, staging.data())) {
    return {"is not in the ciphered form: what follows the \"_\" is not URL-safe base64", {}};
  }
  std::array<std::uint8_t, capacity> binary;
  std::uint32_t size = 0;
  if (!cipher_.decode_base64(staging.data(), static_cast<std::uint32_t>(digits.size()), binary, size)) {
    return {"is not in the ciphered form: what follows the \"_\" is not URL-safe base64", {}};
  }
  if (size == 0 || size % ports::ScriptCipher::block_size != 0) {
    return {"is not in the ciphered form: it does not hold whole cipher blocks", {}};
  }
  if (!cipher_.decrypt(key_, binary.data(), size)) return {"does not decipher with the key", {}};

  const std::string_view plain(reinterpret_cast<const char*>(binary.data()), size);
  if (!base::strings::is_utf8(plain) || plain.find('\0') != std::string_view::npos) {
    return {"does not decipher with the key to a text", {}};
  }
  return {nullptr, kept(plain, memory_)};
}

}  // namespace host
