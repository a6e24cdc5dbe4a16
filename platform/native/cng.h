#pragma once

#include "platform/ports/cng.h"

namespace native {

/// CNG's calls by OpenSSL.
class OpensslCng final : public ports::Cng {
 public:
  ports::Status open_algorithm(const wchar_t* identifier, ports::CngAlgorithm& out) override;
  void close_algorithm(ports::CngAlgorithm algorithm) override;
  ports::Status random(ports::CngAlgorithm rng, std::span<std::uint8_t> into) override;
  ports::Status generate_key(ports::CngAlgorithm algorithm, std::span<const std::uint8_t> secret,
                             ports::CngKey& out) override;
  ports::Status import_public_key(ports::CngAlgorithm rsa, std::span<const std::uint8_t> blob,
                                  ports::CngKey& out) override;
  ports::Status import_private_key(ports::CngAlgorithm rsa, std::span<const std::uint8_t> blob,
                                   ports::CngKey& out) override;
  void destroy_key(ports::CngKey key) override;
  ports::Status block_length(ports::CngKey key, std::uint32_t& out) override;
  ports::Status export_key(ports::CngKey key, std::span<std::uint8_t> into, std::uint32_t& size) override;
  ports::Status encrypt(ports::CngKey key, std::span<const std::uint8_t> plain, std::span<std::uint8_t> iv,
                        std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) override;
  ports::Status decrypt(ports::CngKey key, std::span<const std::uint8_t> cipher, std::span<std::uint8_t> iv,
                        std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) override;
  ports::ErrorCode error_of(ports::Status status) override;
};

}  // namespace native
