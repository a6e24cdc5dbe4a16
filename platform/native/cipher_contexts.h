#pragma once

#include <openssl/evp.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

namespace native {

struct CipherContextDeleter {
  void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextDeleter>;

/// Which way a context turns; `decrypt_bare` leaves the padding in place.
enum class Way { encrypt, decrypt, decrypt_bare };

/// Contexts that hold one key's schedule for one way, kept for the next message: as many as threads were at work at
/// once. Any thread, without a lock.
class CipherContexts {
 public:
  CipherContexts(const EVP_CIPHER* cipher, std::span<const std::uint8_t> key, Way way);
  ~CipherContexts();
  CipherContexts(const CipherContexts&) = delete;
  CipherContexts& operator=(const CipherContexts&) = delete;

  /// A context for the calling thread alone; null without memory. It wants an IV before its message.
  [[nodiscard]] CipherContext take();
  void give_back(CipherContext context);

 private:
  /// On a cache line of its own, since each thread comes back to the same one.
  struct alignas(64) Slot {
    std::atomic<EVP_CIPHER_CTX*> context{nullptr};
  };

  [[nodiscard]] CipherContext make() const;

  const EVP_CIPHER* const cipher_;
  const std::span<const std::uint8_t> key_;
  const Way way_;
  std::array<Slot, 16> slots_;
};

}  // namespace native
