#pragma once

#include "platform/machine/state.h"
#include "platform/ports/signatures.h"

namespace ports {
class Errors;
}

namespace machine {

class HandleTable;
struct Found;

/// What the machine's files are signed with. Stores, messages and certificates are in the table of handles, so that one
/// that is not given back shows there.
class Signatures final : public ports::Signatures {
 public:
  Signatures(World& world, HandleTable& handles, ports::Errors& errors)
      : world_(world), handles_(handles), errors_(errors) {}

  [[nodiscard]] ports::Result verify(const wchar_t* path) override;
  [[nodiscard]] bool query(const wchar_t* path, ports::CertificateStore& store, ports::SignedMessage& message) override;
  void close(ports::CertificateStore store) override;
  void close(ports::SignedMessage message) override;
  [[nodiscard]] bool signer_info(ports::SignedMessage message, std::uint8_t* into, std::uint32_t& size) override;
  [[nodiscard]] ports::Certificate find_certificate(ports::CertificateStore store,
                                                    const std::uint8_t* signer_info) override;
  void free(ports::Certificate certificate) override;
  [[nodiscard]] std::optional<std::vector<std::uint8_t>> serial_number(ports::Certificate certificate) override;
  [[nodiscard]] std::uint32_t name(ports::Certificate certificate, ports::NameOf which,
                                   std::span<wchar_t> into) override;

 private:
  [[nodiscard]] bool fail(ports::ErrorCode error);
  [[nodiscard]] Found readable(const wchar_t* path) KY_REQUIRES(world_.mutex);

  World& world_;
  HandleTable& handles_;
  ports::Errors& errors_;
};

}  // namespace machine
