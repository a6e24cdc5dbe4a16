#pragma once

#include "platform/faults/faulty.h"
#include "platform/ports/inspection.h"
#include "platform/ports/signatures.h"
#include "platform/ports/tokens.h"

namespace faults {

/// An inspection of processes whose calls fail by plan.
class FaultyInspection final : public Faulty<ports::ProcessInspection> {
 public:
  using Faulty::Faulty;

  ports::Handle snapshot() override {
    return ask(Operation::inspection_snapshot, ports::Handle::invalid, [&] { return inner_.snapshot(); });
  }
  bool first(ports::Handle snapshot, ports::ProcessRow& row) override {
    return ask(Operation::inspection_first, false, [&] { return inner_.first(snapshot, row); });
  }
  bool next(ports::Handle snapshot, ports::ProcessRow& row) override {
    return ask(Operation::inspection_next, false, [&] { return inner_.next(snapshot, row); });
  }
  ports::Handle open(std::uint32_t access, std::uint32_t id) override {
    return ask(Operation::inspection_open, ports::Handle::null, [&] { return inner_.open(access, id); });
  }
  ports::Handle current() override { return inner_.current(); }
  bool is_wow64(ports::Handle process, bool& out) override {
    return ask(Operation::inspection_is_wow64, false, [&] { return inner_.is_wow64(process, out); });
  }
  std::uint32_t image_path(ports::Handle process, std::span<wchar_t> into) override {
    return ask(Operation::inspection_image_path, std::uint32_t{0}, [&] { return inner_.image_path(process, into); });
  }
  std::uint32_t image_device_path(ports::Handle process, std::span<wchar_t> into) override {
    return ask(Operation::inspection_image_device_path, std::uint32_t{0},
               [&] { return inner_.image_device_path(process, into); });
  }
  ports::Status basic_information(ports::Handle process, ports::ProcessBasicInformation& out,
                                  std::uint32_t& returned) override {
    return answer(Operation::inspection_basic_information,
                  [&] { return inner_.basic_information(process, out, returned); });
  }
  bool read_memory(ports::Handle process, std::uint64_t address, std::span<std::uint8_t> into) override {
    return ask(Operation::inspection_read_memory, false, [&] { return inner_.read_memory(process, address, into); });
  }
};

/// Privileges that are not granted by plan.
class FaultyTokens final : public Faulty<ports::Tokens> {
 public:
  using Faulty::Faulty;

  bool open_own(std::uint32_t access, ports::Handle& token) override {
    return ask(Operation::tokens_open_own, false, [&] { return inner_.open_own(access, token); });
  }
  bool privilege_value(const wchar_t* name, ports::PrivilegeValue& out) override {
    return ask(Operation::tokens_privilege_value, false, [&] { return inner_.privilege_value(name, out); });
  }
  bool adjust(ports::Handle token, const ports::PrivilegeState& state, ports::PrivilegeState* previous) override {
    return ask(Operation::tokens_adjust, false, [&] { return inner_.adjust(token, state, previous); });
  }
};

/// Signatures that cannot be read, or are not trusted, by plan.
class FaultySignatures final : public Faulty<ports::Signatures> {
 public:
  using Faulty::Faulty;

  ports::Result verify(const wchar_t* path) override {
    return answer(Operation::signatures_verify, [&] { return inner_.verify(path); });
  }
  bool query(const wchar_t* path, ports::CertificateStore& store, ports::SignedMessage& message) override {
    return ask(Operation::signatures_query, false, [&] { return inner_.query(path, store, message); });
  }
  void close(ports::CertificateStore store) override { inner_.close(store); }
  void close(ports::SignedMessage message) override { inner_.close(message); }
  bool signer_info(ports::SignedMessage message, std::uint8_t* into, std::uint32_t& size) override {
    return ask(Operation::signatures_signer_info, false, [&] { return inner_.signer_info(message, into, size); });
  }
  ports::Certificate find_certificate(ports::CertificateStore store, const std::uint8_t* signer_info) override {
    return ask(Operation::signatures_find_certificate, ports::Certificate::null,
               [&] { return inner_.find_certificate(store, signer_info); });
  }
  void free(ports::Certificate certificate) override { inner_.free(certificate); }
  std::optional<std::vector<std::uint8_t>> serial_number(ports::Certificate certificate) override {
    return ask(Operation::signatures_serial_number, std::optional<std::vector<std::uint8_t>>(),
               [&] { return inner_.serial_number(certificate); });
  }
  std::uint32_t name(ports::Certificate certificate, ports::NameOf which, std::span<wchar_t> into) override {
    return inner_.name(certificate, which, into);
  }
};

}  // namespace faults
