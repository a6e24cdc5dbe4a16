#include "platform/native/cipher_contexts.h"

#include <functional>
#include <thread>

namespace native {

namespace {

[[nodiscard]] std::size_t home() {
  return std::hash<std::thread::id>()(std::this_thread::get_id());
}

}  // namespace

CipherContexts::CipherContexts(const EVP_CIPHER* cipher, std::span<const std::uint8_t> key, Way way)
    : cipher_(cipher), key_(key), way_(way) {}

CipherContexts::~CipherContexts() {
  for (Slot& slot : slots_) EVP_CIPHER_CTX_free(slot.context.load());
}

CipherContext CipherContexts::make() const {
  CipherContext context(EVP_CIPHER_CTX_new());
  if (context == nullptr ||
      EVP_CipherInit_ex(context.get(), cipher_, nullptr, key_.data(), nullptr, way_ == Way::encrypt ? 1 : 0) != 1 ||
      EVP_CIPHER_CTX_set_padding(context.get(), way_ == Way::decrypt_bare ? 0 : 1) != 1) {
    return nullptr;
  }
  return context;
}

CipherContext CipherContexts::take() {
  const std::size_t first = home();
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    std::atomic<EVP_CIPHER_CTX*>& slot = slots_[(first + i) % slots_.size()].context;
    // Looked at before it is emptied, so that the lines of other threads stay where they are.
    if (slot.load(std::memory_order_relaxed) == nullptr) continue;
    if (EVP_CIPHER_CTX* const context = slot.exchange(nullptr, std::memory_order_acquire)) {
      return CipherContext(context);
    }
  }
  return make();
}

void CipherContexts::give_back(CipherContext context) {
  const std::size_t first = home();
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    EVP_CIPHER_CTX* free = nullptr;
    if (slots_[(first + i) % slots_.size()].context.compare_exchange_strong(
            free, context.get(), std::memory_order_release, std::memory_order_relaxed)) {
      static_cast<void>(context.release());
      return;
    }
  }
}

}  // namespace native
