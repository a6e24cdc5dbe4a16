#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/ports/types.h"

namespace ports {

enum class CertificateStore : std::uintptr_t { null = 0 };
enum class SignedMessage : std::uintptr_t { null = 0 };
enum class Certificate : std::uintptr_t { null = 0 };

/// What WinVerifyTrust answers, an HRESULT.
namespace trust {
inline constexpr Result trusted = 0;
inline constexpr Result subject_not_trusted = static_cast<Result>(0x800B0004);
inline constexpr Result no_signature = static_cast<Result>(0x800B0100);
inline constexpr Result expired = static_cast<Result>(0x800B0101);
inline constexpr Result untrusted_root = static_cast<Result>(0x800B0109);
inline constexpr Result subject_form_unknown = static_cast<Result>(0x800B0003);
inline constexpr Result bad_digest = static_cast<Result>(0x80096010);
}  // namespace trust

/// Which of a certificate's two names.
enum class NameOf : std::uint32_t { subject = 0, issuer = 1 };

/// Signatures embedded in programs and libraries (WinTrust and CryptoAPI). Any thread; failure leaves its code in the
/// last error.
class Signatures {
 public:
  virtual ~Signatures() = default;

  /// WinVerifyTrust with WINTRUST_ACTION_GENERIC_VERIFY_V2 on a file: no user interface, no revocation check, no state.
  /// See `trust`; a file that is not there gives file_not_found as it is, 2.
  [[nodiscard]] virtual Result verify(const wchar_t* path) = 0;

  /// CryptQueryObject for an embedded PKCS #7 signature in binary form: gives its certificates and its message. Fails
  /// with no_match_when_query (no signature), file_not_found.
  [[nodiscard]] virtual bool query(const wchar_t* path, CertificateStore& store, SignedMessage& message) = 0;
  virtual void close(CertificateStore store) = 0;  // CertCloseStore
  virtual void close(SignedMessage message) = 0;   // CryptMsgClose

  /// CryptMsgGetParam, CMSG_SIGNER_INFO_PARAM, signer 0. With a null `into` gives the size in bytes through `size`.
  /// What comes may point into itself: it is only good where it lies. Fails with more_data.
  [[nodiscard]] virtual bool signer_info(SignedMessage message, std::uint8_t* into, std::uint32_t& size) = 0;

  /// CertFindCertificateInStore, CERT_FIND_SUBJECT_CERT, with issuer and serial number out of the signer's info. Null
  /// on failure: certificate_not_found (CRYPT_E_NOT_FOUND).
  [[nodiscard]] virtual Certificate find_certificate(CertificateStore store, const std::uint8_t* signer_info) = 0;
  virtual void free(Certificate certificate) = 0;  // CertFreeCertificateContext

  /// The serial number's bytes as they are stored, least first; nothing where the certificate has no info.
  [[nodiscard]] virtual std::optional<std::vector<std::uint8_t>> serial_number(Certificate certificate) = 0;

  /// CertGetNameStringW, CERT_NAME_SIMPLE_DISPLAY_TYPE: the length with the terminator; with an empty `into` the length
  /// that is wanted. Never fails: a name that is not there has the length 1.
  [[nodiscard]] virtual std::uint32_t name(Certificate certificate, NameOf which, std::span<wchar_t> into) = 0;
};

}  // namespace ports
