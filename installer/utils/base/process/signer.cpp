#include "installer/utils/base/process/signer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <vector>

#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/extern/base/include/winapi/win_error_category.h"
#include "installer/utils/base/process/image_path.h"
#include "platform/ports/attached.h"
#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/modules.h"
#include "platform/ports/mutex.h"
#include "platform/ports/signatures.h"
#include "platform/ports/system.h"

namespace base::process {

namespace {

using Block = std::unique_ptr<std::uint8_t[]>;

/// A file's embedded signature, open.
class OpenSignature {
 public:
  explicit OpenSignature(const wchar_t* path) : found_(signatures_.query(path, store_, message_)) {}
  ~OpenSignature() {
    if (!found_) return;
    signatures_.close(message_);
    signatures_.close(store_);
  }
  OpenSignature(const OpenSignature&) = delete;
  OpenSignature& operator=(const OpenSignature&) = delete;

  [[nodiscard]] bool found() const { return found_; }
  [[nodiscard]] ports::CertificateStore store() const { return store_; }
  [[nodiscard]] ports::SignedMessage message() const { return message_; }

 private:
  ports::Signatures& signatures_ = ports::system().signatures;
  ports::CertificateStore store_ = ports::CertificateStore::null;
  ports::SignedMessage message_ = ports::SignedMessage::null;
  bool found_;
};

class ScopedCertificate {
 public:
  explicit ScopedCertificate(ports::Certificate certificate) : certificate_(certificate) {}
  ~ScopedCertificate() {
    if (certificate_ != ports::Certificate::null) ports::system().signatures.free(certificate_);
  }
  ScopedCertificate(const ScopedCertificate&) = delete;
  ScopedCertificate& operator=(const ScopedCertificate&) = delete;

  [[nodiscard]] ports::Certificate get() const { return certificate_; }

 private:
  ports::Certificate certificate_;
};

/// Null on failure, which `error` tells.
[[nodiscard]] Block read_signer_info(ports::SignedMessage message, std::error_code& error) {
  ports::Signatures& signatures = ports::system().signatures;
  std::uint32_t size = 0;
  if (!signatures.signer_info(message, nullptr, size)) {
    error = winapi::last_error();
    return nullptr;
  }
  Block block(new (std::nothrow) std::uint8_t[size]);
  if (block == nullptr) {
    error = winapi::error_of(ports::code::not_enough_memory);
  } else if (!signatures.signer_info(message, block.get(), size)) {
    error = winapi::last_error();
    block.reset();
  }
  return block;
}

[[nodiscard]] ports::Certificate find_certificate(ports::CertificateStore store, const std::uint8_t* signer_info,
                                                  std::error_code& error) {
  const ports::Certificate found = ports::system().signatures.find_certificate(store, signer_info);
  if (found == ports::Certificate::null) {
    error = winapi::last_error();
    // A signature without its signer's certificate is bad data, as a certificate without content is.
    if (!error || error == winapi::error_of(ports::code::certificate_not_found)) {
      error = winapi::error_of(ports::code::invalid_data);
    }
  }
  return found;
}

/// From the last byte to the first, which is how people and tools write it.
[[nodiscard]] std::wstring display_order(std::span<const std::uint8_t> stored) {
  static constexpr wchar_t digits[] = L"0123456789abcdef";
  std::wstring text;
  text.reserve(stored.size() * 2);
  for (std::size_t i = stored.size(); i-- > 0;) {
    text.push_back(digits[stored[i] >> 4]);
    text.push_back(digits[stored[i] & 0xF]);
  }
  return text;
}

[[nodiscard]] std::wstring name_of(ports::Certificate certificate, ports::NameOf which) {
  ports::Signatures& signatures = ports::system().signatures;
  const std::uint32_t length = signatures.name(certificate, which, {});
  if (length == 0) return {};
  std::wstring text(length - 1, L'\0');
  (void)signatures.name(certificate, which, {text.data(), length});
  return text;
}

class OwnSigner final : public ports::Attachment {
 public:
  [[nodiscard]] const SignerInfo& get() KY_EXCLUDES(mutex_) {
    const ports::Lock lock(mutex_);
    if (!signer_) {
      std::error_code ignored;
      signer_ = ReadSignerInfo(GetOwnImagePath(), ignored);
    }
    return *signer_;
  }

 private:
  ports::Mutex mutex_;
  std::optional<SignerInfo> signer_ KY_GUARDED_BY(mutex_);  // never changed once it is there
};

[[nodiscard]] bool is_signed_under(const std::wstring& path, const std::wstring& subject) {
  std::error_code error;
  if (!IsFileTrusted(path, error) || error) return false;
  const SignerInfo signer = ReadSignerInfo(path, error);
  return !error && signer.signing.subject == subject;
}

}  // namespace

bool IsFileTrusted(const std::wstring& path, std::error_code& error) {
  const ports::Result result = ports::system().signatures.verify(path.c_str());
  const bool told = result != ports::trust::trusted && result != ports::trust::subject_not_trusted;
  error = told ? winapi::error_of(static_cast<ports::ErrorCode>(result)) : std::error_code();
  return result == ports::trust::trusted;
}

SignerInfo ReadSignerInfo(const std::wstring& path, std::error_code& error) {
  const OpenSignature signature(path.c_str());
  if (!signature.found()) {
    error = winapi::last_error();
    return {};
  }
  const Block info = read_signer_info(signature.message(), error);
  if (info == nullptr) return {};
  const ScopedCertificate certificate(find_certificate(signature.store(), info.get(), error));
  if (certificate.get() == ports::Certificate::null) return {};
  const auto serial_number = ports::system().signatures.serial_number(certificate.get());
  if (!serial_number) {
    error = winapi::error_of(ports::code::invalid_data);
    return {};
  }
  SignerInfo signer;
  signer.signing.serialNumber = display_order(*serial_number);
  signer.signing.issuer = name_of(certificate.get(), ports::NameOf::issuer);
  signer.signing.subject = name_of(certificate.get(), ports::NameOf::subject);
  return signer;
}

const SignerInfo& GetOwnSignerInfo() {
  return ports::attached<OwnSigner>().get();
}

ports::Module LoadLibraryFromSameSigner(const std::wstring& path, const SignerInfo& expected) {
  const ports::System& system = ports::system();
  // Held to the end, so that no writer gets in between the check and the load. Where it cannot be opened, the checks or
  // the load fail by themselves.
  const winapi::scoped_handle held(system.files.open(path.c_str(), ports::file_access::generic_read,
                                                     ports::file_share::read, ports::Disposition::open_existing,
                                                     ports::file_attribute::normal));
  const std::wstring& subject = expected.signing.subject;
  if (!subject.empty() && !is_signed_under(path, subject)) return ports::Module::null;
  return system.modules.load(path.c_str(), 0);
}

}  // namespace base::process
