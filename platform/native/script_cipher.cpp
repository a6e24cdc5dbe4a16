#include "platform/native/script_cipher.h"

#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <algorithm>
#include <array>

#include "platform/ports/codes.h"

namespace native {

namespace {

constexpr std::array<std::uint8_t, ports::ScriptCipher::block_size> zero_iv{};
constexpr std::uint32_t no_digit = 1U << 24;  // above a group's 24 bits

/// What a digit adds to its group's 24 bits, by its place in the group.
constexpr std::array<std::array<std::uint32_t, 256>, 4> base64_values = [] {
  std::array<std::array<std::uint32_t, 256>, 4> values{};
  constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::uint32_t place = 0; place < 4; ++place) {
    values[place].fill(no_digit);
    for (std::uint32_t i = 0; i < 64; ++i) values[place][static_cast<std::size_t>(digits[i])] = i << (18 - 6 * place);
  }
  return values;
}();

}  // namespace

std::uintptr_t OpensslCipher::import_key(std::span<const std::uint8_t, key_size> bytes) {
  auto key = std::make_unique<Key>();
  key->decrypting.reset(EVP_CIPHER_CTX_new());
  key->encrypting.reset(EVP_CIPHER_CTX_new());
  if (EVP_DecryptInit_ex(key->decrypting.get(), EVP_aes_256_cbc(), nullptr, bytes.data(), zero_iv.data()) != 1 ||
      EVP_EncryptInit_ex(key->encrypting.get(), EVP_aes_256_cbc(), nullptr, bytes.data(), zero_iv.data()) != 1) {
    errors_.set_last(ports::code::not_enough_memory);
    return 0;
  }
  const auto handle = reinterpret_cast<std::uintptr_t>(key.get());
  keys_.emplace(handle, std::move(key));
  return handle;
}

void OpensslCipher::destroy_key(std::uintptr_t key) {
  keys_.erase(key);
}

bool OpensslCipher::decode_base64(const wchar_t* text, std::uint32_t count, std::span<std::uint8_t> into,
                                  std::uint32_t& size) {
  std::size_t length = count;
  while (length > 0 && text[length - 1] == L'=') --length;
  if (length % 4 == 1) return fail(ports::code::invalid_data);
  const std::size_t needed = length / 4 * 3 + (length % 4 == 0 ? 0 : length % 4 - 1);
  if (needed > into.size()) return fail(ports::code::more_data);
  std::uint32_t seen = 0;
  std::uint32_t beyond = 0;
  for (std::size_t i = 0; i < length; ++i) beyond |= static_cast<std::uint32_t>(text[i]);
  const auto value_of = [](std::uint32_t place, wchar_t c) {
    return base64_values[place][static_cast<std::uint8_t>(c)];
  };
  std::size_t at = 0;
  std::uint8_t* to = into.data();
  for (; at + 4 <= length; at += 4) {
    const std::uint32_t bits =
        value_of(0, text[at]) | value_of(1, text[at + 1]) | value_of(2, text[at + 2]) | value_of(3, text[at + 3]);
    seen |= bits;
    *to++ = static_cast<std::uint8_t>(bits >> 16);
    *to++ = static_cast<std::uint8_t>(bits >> 8);
    *to++ = static_cast<std::uint8_t>(bits);
  }
  std::uint32_t rest = 0;
  for (std::uint32_t place = 0; at < length; ++at, ++place) rest |= value_of(place, text[at]);
  seen |= rest;
  if (length % 4 >= 2) *to++ = static_cast<std::uint8_t>(rest >> 16);
  if (length % 4 == 3) *to++ = static_cast<std::uint8_t>(rest >> 8);
  if (seen >> 24 != 0 || beyond >= base64_values[0].size()) return fail(ports::code::invalid_data);
  size = static_cast<std::uint32_t>(needed);
  return true;
}

bool OpensslCipher::decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) {
  const auto found = keys_.find(key);
  if (found == keys_.end()) return fail(ports::code::bad_cipher_key);
  if (size == 0 || size % block_size != 0) return fail(ports::code::bad_cipher_data);
  EVP_CIPHER_CTX* const context = found->second->decrypting.get();
  int written = 0;
  int rest = 0;
  if (EVP_DecryptInit_ex(context, nullptr, nullptr, nullptr, zero_iv.data()) != 1 ||
      EVP_DecryptUpdate(context, bytes, &written, bytes, static_cast<int>(size)) != 1 ||
      EVP_DecryptFinal_ex(context, bytes + written, &rest) != 1) {
    return fail(ports::code::bad_cipher_data);
  }
  size = static_cast<std::uint32_t>(written + rest);
  return true;
}

std::vector<std::uint8_t> OpensslCipher::encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) {
  const auto found = keys_.find(key);
  if (found == keys_.end()) {
    errors_.set_last(ports::code::bad_cipher_key);
    return {};
  }
  EVP_CIPHER_CTX* const context = found->second->encrypting.get();
  std::vector<std::uint8_t> out(plain.size() + block_size);
  int written = 0;
  int rest = 0;
  if (EVP_EncryptInit_ex(context, nullptr, nullptr, nullptr, zero_iv.data()) != 1 ||
      EVP_EncryptUpdate(context, out.data(), &written, plain.data(), static_cast<int>(plain.size())) != 1 ||
      EVP_EncryptFinal_ex(context, out.data() + written, &rest) != 1) {
    errors_.set_last(ports::code::bad_cipher_data);
    return {};
  }
  out.resize(static_cast<std::size_t>(written + rest));
  return out;
}

bool OpensslKeyMaker::random(std::span<std::uint8_t> into) {
  return RAND_bytes(into.data(), static_cast<int>(into.size())) == 1;
}

bool OpensslKeyMaker::rsa_pair(std::uint32_t bits, ports::RsaPair& out) {
  const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> pair(EVP_RSA_gen(bits), &EVP_PKEY_free);
  if (!pair) return false;
  const std::unique_ptr<PKCS8_PRIV_KEY_INFO, decltype(&PKCS8_PRIV_KEY_INFO_free)> info(EVP_PKEY2PKCS8(pair.get()),
                                                                                       &PKCS8_PRIV_KEY_INFO_free);
  if (!info) return false;
  const auto encoded = [](auto* object, auto encode) {
    std::vector<std::uint8_t> der(static_cast<std::size_t>(std::max(0, encode(object, nullptr))));
    unsigned char* to = der.data();
    if (!der.empty()) encode(object, &to);
    return der;
  };
  out.private_key = encoded(info.get(), i2d_PKCS8_PRIV_KEY_INFO);
  out.public_key = encoded(pair.get(), i2d_PUBKEY);
  return !out.private_key.empty() && !out.public_key.empty();
}

}  // namespace native
