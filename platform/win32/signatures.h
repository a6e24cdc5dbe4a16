#pragma once

#include "platform/ports/signatures.h"

namespace win32 {

class Signatures final : public ports::Signatures {
 public:
  ports::Result verify(const wchar_t* path) override;
  bool query(const wchar_t* path, ports::CertificateStore& store, ports::SignedMessage& message) override;
  void close(ports::CertificateStore store) override;
  void close(ports::SignedMessage message) override;
  bool signer_info(ports::SignedMessage message, std::uint8_t* into, std::uint32_t& size) override;
  ports::Certificate find_certificate(ports::CertificateStore store, const std::uint8_t* signer_info) override;
  void free(ports::Certificate certificate) override;
  std::optional<std::vector<std::uint8_t>> serial_number(ports::Certificate certificate) override;
  std::uint32_t name(ports::Certificate certificate, ports::NameOf which, std::span<wchar_t> into) override;
};

}  // namespace win32
