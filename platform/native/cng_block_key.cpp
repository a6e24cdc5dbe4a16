#include <openssl/crypto.h>
#include <openssl/err.h>

#include <algorithm>

#include "platform/native/cng_keys.h"

namespace native {

namespace status = ports::status;
using ports::Status;

namespace {

constexpr std::uint32_t blob_magic = 0x4D42444B;  // "KDBM"
constexpr std::uint32_t blob_version = 1;
constexpr std::uint32_t blob_header_size = 12;

void put(std::span<std::uint8_t> into, std::uint32_t number) {
  for (std::size_t i = 0; i < sizeof number; ++i) into[i] = static_cast<std::uint8_t>(number >> (8 * i));
}

}  // namespace

const EVP_CIPHER* aes_of(std::size_t key_size) {
  if (key_size >= 32) return EVP_aes_256_cbc();
  if (key_size == 24) return EVP_aes_192_cbc();
  return key_size == 16 ? EVP_aes_128_cbc() : nullptr;
}

const EVP_CIPHER* triple_des_of(std::size_t key_size) {
  return key_size >= 24 ? EVP_des_ede3_cbc() : nullptr;
}

BlockKey::BlockKey(const EVP_CIPHER* cipher, std::span<const std::uint8_t> secret)
    : block_length_(static_cast<std::uint32_t>(EVP_CIPHER_get_block_size(cipher))),
      secret_(secret.begin(), secret.begin() + EVP_CIPHER_get_key_length(cipher)),
      encrypting_(cipher, secret_, Way::encrypt),
      decrypting_(cipher, secret_, Way::decrypt),
      decrypting_bare_(cipher, secret_, Way::decrypt_bare) {}

BlockKey::~BlockKey() {
  OPENSSL_cleanse(secret_.data(), secret_.size());
}

Status BlockKey::export_to(std::span<std::uint8_t> into, std::uint32_t& size) const {
  size = blob_header_size + static_cast<std::uint32_t>(secret_.size());
  if (into.empty()) return status::success;
  if (into.size() < size) return status::buffer_too_small;
  put(into, blob_magic);
  put(into.subspan(4), blob_version);
  put(into.subspan(8), static_cast<std::uint32_t>(secret_.size()));
  std::copy(secret_.begin(), secret_.end(), into.begin() + blob_header_size);
  return status::success;
}

Status BlockKey::turn(CipherContexts& contexts, std::span<const std::uint8_t> from, std::span<const std::uint8_t> iv,
                      std::uint8_t* to, std::uint32_t& size) const {
  CipherContext context = contexts.take();
  if (context == nullptr) return status::no_memory;
  int written = 0;
  int rest = 0;
  // The key and the way (-1) stay as they are.
  const bool turned = EVP_CipherInit_ex(context.get(), nullptr, nullptr, nullptr, iv.data(), -1) == 1 &&
                      EVP_CipherUpdate(context.get(), to, &written, from.data(), static_cast<int>(from.size())) == 1 &&
                      EVP_CipherFinal_ex(context.get(), to + written, &rest) == 1;
  contexts.give_back(std::move(context));
  if (!turned) {
    ERR_clear_error();
    return status::data_error;
  }
  size = static_cast<std::uint32_t>(written + rest);
  return status::success;
}

Status BlockKey::encrypt(std::span<const std::uint8_t> plain, std::span<const std::uint8_t> iv,
                         std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) {
  if (padding != ports::cng_padding::block || iv.size() != block_length_) return status::invalid_parameter;
  size = (static_cast<std::uint32_t>(plain.size()) / block_length_ + 1) * block_length_;
  if (into.empty()) return status::success;
  if (into.size() < size) return status::buffer_too_small;
  return turn(encrypting_, plain, iv, into.data(), size);
}

Status BlockKey::decrypt(std::span<const std::uint8_t> cipher, std::span<const std::uint8_t> iv,
                         std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) {
  if (padding > ports::cng_padding::block || iv.size() != block_length_) return status::invalid_parameter;
  if (cipher.empty() || cipher.size() % block_length_ != 0) return status::invalid_buffer_size;
  size = static_cast<std::uint32_t>(cipher.size());
  if (into.empty()) return status::success;
  if (into.size() < size) return status::buffer_too_small;
  CipherContexts& contexts = padding == ports::cng_padding::none ? decrypting_bare_ : decrypting_;
  return turn(contexts, cipher, iv, into.data(), size);
}

}  // namespace native
