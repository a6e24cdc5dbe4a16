#include "host/script/decipherer.h"

#include <span>

#include "installer/utils/base/strings/utf8.h"
#include "platform/ports/script_cipher.h"

namespace host {

namespace {

/// Standard base64 of one URL-safe character; 0 for one outside the alphabet.
wchar_t standard(wchar_t c) {
  if ((c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || (c >= L'0' && c <= L'9')) return c;
  switch (c) {
    case L'-':
      return L'+';
    case L'_':
      return L'/';
    case L'.':
      return L'=';
    default:
      return 0;
  }
}

/// Writes the standard form of `digits`; false where a character or the place of the padding is wrong.
bool to_standard(std::wstring_view digits, wchar_t* out) {
  std::size_t padding = 0;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    out[i] = standard(digits[i]);
    if (out[i] == 0) return false;
    if (out[i] == L'=') {
      ++padding;
    } else if (padding != 0) {
      return false;
    }
  }
  return padding <= 2;
}

}  // namespace

const Deciphered& Decipherer::decipher(std::wstring_view ciphered) {
  const auto found = known_.find(ciphered);
  if (found != known_.end()) return found->second;
  return known_.emplace(std::wstring(ciphered), decipher_anew(ciphered)).first->second;
}

Deciphered Decipherer::decipher_anew(std::wstring_view ciphered) {
  if (!ciphered.starts_with(L'_')) return {"is not in the ciphered form: it does not begin with \"_\"", {}};
  const std::wstring_view digits = ciphered.substr(1);
  if (digits.empty()) return {"is not in the ciphered form: nothing follows the \"_\"", {}};
  if (digits.size() >= capacity) return {"is too long: more than 511 characters follow the \"_\"", {}};

  std::array<wchar_t, capacity> staging{};
  if (digits.size() % 4 != 0 || !to_standard(digits, staging.data())) {
    return {"is not in the ciphered form: what follows the \"_\" is not URL-safe base64", {}};
  }
  std::array<std::uint8_t, capacity> binary{};
  std::uint32_t size = 0;
  if (!cipher_.decode_base64(staging.data(), static_cast<std::uint32_t>(digits.size()), binary, size)) {
    return {"is not in the ciphered form: what follows the \"_\" is not URL-safe base64", {}};
  }
  if (size == 0 || size % ports::ScriptCipher::block_size != 0) {
    return {"is not in the ciphered form: it does not hold whole cipher blocks", {}};
  }
  if (!cipher_.decrypt(key_, binary.data(), size)) return {"does not decipher with the key", {}};

  Deciphered result{nullptr, std::string(binary.begin(), binary.begin() + static_cast<std::ptrdiff_t>(size))};
  if (!base::strings::is_utf8(result.plain) || result.plain.find('\0') != std::string::npos) {
    return {"does not decipher with the key to a text", {}};
  }
  return result;
}

}  // namespace host
