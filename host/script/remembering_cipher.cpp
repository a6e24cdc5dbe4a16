#include "host/script/remembering_cipher.h"

#include <algorithm>

namespace host {

namespace {

std::string_view kept(std::string_view bytes, std::pmr::memory_resource& memory) {
  auto* const copy = static_cast<char*>(memory.allocate(bytes.size(), alignof(char)));
  bytes.copy(copy, bytes.size());
  return {copy, bytes.size()};
}

std::string_view as_text(const std::uint8_t* bytes, std::size_t size) {
  return {reinterpret_cast<const char*>(bytes), size};
}

}  // namespace

std::uintptr_t RememberingCipher::import_key(std::span<const std::uint8_t, key_size> bytes) {
  return inner_.import_key(bytes);
}

void RememberingCipher::destroy_key(std::uintptr_t key) {
  inner_.destroy_key(key);
}

bool RememberingCipher::decode_base64(const wchar_t* text, std::uint32_t length, std::span<std::uint8_t> into,
                                      std::uint32_t& size) {
  return inner_.decode_base64(text, length, into, size);
}

bool RememberingCipher::decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) {
  if (memory_ == nullptr || key != memory_->key_ || size < block_size) return inner_.decrypt(key, bytes, size);

  const std::string_view ciphered = as_text(bytes, size);
  const auto known = memory_->plain_.find(ciphered);
  if (known != memory_->plain_.end()) {
    size = static_cast<std::uint32_t>(known->second.size());
    std::copy(known->second.begin(), known->second.end(), bytes);
    return true;
  }
  const std::string_view kept_ciphered = kept(ciphered, memory_->bytes_);
  if (!inner_.decrypt(key, bytes, size)) return false;
  memory_->plain_.emplace(kept_ciphered, kept(as_text(bytes, size), memory_->bytes_));
  return true;
}

std::vector<std::uint8_t> RememberingCipher::encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) {
  return inner_.encrypt(key, plain);
}

}  // namespace host
