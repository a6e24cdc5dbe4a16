#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>
#include <unordered_map>

#include "platform/ports/script_cipher.h"

namespace host {

/// A cipher that deciphers equal bytes once while it has a memory: a load deciphers each value to check it,
/// and its commands decipher the same values again, each for itself. Failures are not remembered.
class RememberingCipher final : public ports::ScriptCipher {
 public:
  /// `inner` outlives this object.
  explicit RememberingCipher(ports::ScriptCipher& inner) : inner_(inner) {}

  /// What the cipher remembers of one key, for the life of this object; one at a time. It grows with the values that
  /// are deciphered, so it is for a load only.
  class Memory {
   public:
    Memory(RememberingCipher& cipher, std::uintptr_t key) : cipher_(cipher), key_(key) { cipher_.memory_ = this; }
    ~Memory() { cipher_.memory_ = nullptr; }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

   private:
    friend class RememberingCipher;
    /// Cipher bytes are as good as random, and the last ones depend on all before them.
    struct Hash {
      std::size_t operator()(std::string_view bytes) const {
        std::size_t hash = 0;
        bytes.copy(reinterpret_cast<char*>(&hash), sizeof(hash), bytes.size() - sizeof(hash));
        return hash;
      }
    };

    RememberingCipher& cipher_;
    std::uintptr_t key_;
    std::pmr::monotonic_buffer_resource bytes_{64 * 1024};
    std::pmr::unordered_map<std::string_view, std::string_view, Hash> plain_{1024, &bytes_};
  };

  std::uintptr_t import_key(std::span<const std::uint8_t, key_size> bytes) override;
  void destroy_key(std::uintptr_t key) override;
  bool decode_base64(const wchar_t* text, std::uint32_t length, std::span<std::uint8_t> into,
                     std::uint32_t& size) override;
  bool decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) override;
  std::vector<std::uint8_t> encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) override;

 private:
  ports::ScriptCipher& inner_;
  Memory* memory_ = nullptr;
};

}  // namespace host
