#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/ports/cng.h"

namespace diagnostics::reader {

/// The key that a run's records are sealed with.
class SessionKey {
 public:
  SessionKey(ports::Cng& cng, ports::CngKey key, std::uint32_t block_size)
      : cng_(cng), key_(key), block_size_(block_size) {}
  ~SessionKey() { cng_.destroy_key(key_); }
  SessionKey(const SessionKey&) = delete;
  SessionKey& operator=(const SessionKey&) = delete;

  [[nodiscard]] std::uint32_t block_size() const { return block_size_; }

  /// Deciphers whole blocks as one chained message from a zero initialisation vector and leaves the padding in place.
  /// `plain` is as long as `cipher`.
  [[nodiscard]] bool decrypt(std::span<const std::uint8_t> cipher, std::span<std::uint8_t> plain) const;

 private:
  ports::Cng& cng_;
  const ports::CngKey key_;
  const std::uint32_t block_size_;
};

/// Opens wrapped session keys: with a log's private key, or by having seen them wrapped.
class KeyOpener {
 public:
  explicit KeyOpener(ports::Cng& cng) : cng_(cng) {}
  ~KeyOpener();
  KeyOpener(const KeyOpener&) = delete;
  KeyOpener& operator=(const KeyOpener&) = delete;

  /// Takes the name of the records' algorithm; false where it is not known. Once.
  [[nodiscard]] bool use_algorithm(const std::wstring& name);
  /// Takes a BCRYPT_RSAPRIVATE_BLOB; false where it is none. Once.
  [[nodiscard]] bool use_private_key(std::span<const std::uint8_t> blob);

  /// Takes what a key that was seen to be wrapped held: the plain key blob of `wrapped`.
  void know(std::vector<std::uint8_t> wrapped, std::vector<std::uint8_t> blob);

  /// A wrapped key has exactly this many bytes.
  [[nodiscard]] std::uint32_t wrapped_size() const { return wrapped_size_; }

  /// Null where the bytes are no key of the algorithm, wrapped for this private key.
  [[nodiscard]] std::shared_ptr<const SessionKey> open(std::span<const std::uint8_t> wrapped) const;

 private:
  [[nodiscard]] std::vector<std::uint8_t> unwrap(std::span<const std::uint8_t> wrapped) const;

  ports::Cng& cng_;
  std::map<std::vector<std::uint8_t>, std::vector<std::uint8_t>> known_;
  ports::CngAlgorithm rsa_ = ports::CngAlgorithm::null;
  ports::CngAlgorithm symmetric_ = ports::CngAlgorithm::null;
  ports::CngKey private_key_ = ports::CngKey::null;
  std::uint32_t wrapped_size_ = 0;
};

}  // namespace diagnostics::reader
