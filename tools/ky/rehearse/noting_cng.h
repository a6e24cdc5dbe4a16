#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/ports/cng.h"
#include "platform/ports/mutex.h"

namespace rehearsal {

/// The engine of the build, with a note of every key that was wrapped and of its algorithm: a rehearsal reads its own
/// log, for which nobody has to hand out the private key.
class NotingCng final : public ports::Cng {
 public:
  /// `inner` outlives this object.
  explicit NotingCng(ports::Cng& inner) : inner_(inner) {}

  /// A wrapped key and the key blob inside.
  using Wrapped = std::pair<std::vector<std::uint8_t>, std::vector<std::uint8_t>>;
  [[nodiscard]] std::vector<Wrapped> wrapped() const;

  /// The symmetric algorithm that was opened last; empty where none was.
  [[nodiscard]] std::wstring algorithm() const;

  ports::Status open_algorithm(const wchar_t* identifier, ports::CngAlgorithm& out) override;
  void close_algorithm(ports::CngAlgorithm algorithm) override { inner_.close_algorithm(algorithm); }
  ports::Status random(ports::CngAlgorithm rng, std::span<std::uint8_t> into) override {
    return inner_.random(rng, into);
  }
  ports::Status generate_key(ports::CngAlgorithm algorithm, std::span<const std::uint8_t> secret,
                             ports::CngKey& out) override {
    return inner_.generate_key(algorithm, secret, out);
  }
  ports::Status import_public_key(ports::CngAlgorithm rsa, std::span<const std::uint8_t> blob,
                                  ports::CngKey& out) override {
    return inner_.import_public_key(rsa, blob, out);
  }
  ports::Status import_private_key(ports::CngAlgorithm rsa, std::span<const std::uint8_t> blob,
                                   ports::CngKey& out) override {
    return inner_.import_private_key(rsa, blob, out);
  }
  void destroy_key(ports::CngKey key) override { inner_.destroy_key(key); }
  ports::Status block_length(ports::CngKey key, std::uint32_t& out) override { return inner_.block_length(key, out); }
  ports::Status export_key(ports::CngKey key, std::span<std::uint8_t> into, std::uint32_t& size) override {
    return inner_.export_key(key, into, size);
  }
  ports::Status encrypt(ports::CngKey key, std::span<const std::uint8_t> plain, std::span<std::uint8_t> iv,
                        std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) override;
  ports::Status decrypt(ports::CngKey key, std::span<const std::uint8_t> cipher, std::span<std::uint8_t> iv,
                        std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) override {
    return inner_.decrypt(key, cipher, iv, into, size, padding);
  }
  ports::ErrorCode error_of(ports::Status status) override { return inner_.error_of(status); }

 private:
  ports::Cng& inner_;
  mutable ports::Mutex mutex_;
  std::vector<Wrapped> wrapped_ KY_GUARDED_BY(mutex_);
  std::wstring algorithm_ KY_GUARDED_BY(mutex_);
};

}  // namespace rehearsal
