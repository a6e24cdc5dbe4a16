#include "platform/win32/signatures.h"

#include <windows.h>

#include <softpub.h>
#include <wincrypt.h>

#include "platform/win32/native_api.h"

namespace win32 {

namespace {

HCERTSTORE native(ports::CertificateStore store) {
  return reinterpret_cast<HCERTSTORE>(store);
}

HCRYPTMSG native(ports::SignedMessage message) {
  return reinterpret_cast<HCRYPTMSG>(message);
}

PCCERT_CONTEXT native(ports::Certificate certificate) {
  return reinterpret_cast<PCCERT_CONTEXT>(certificate);
}

template <class Ported>
Ported ported(const void* object) {
  return static_cast<Ported>(reinterpret_cast<std::uintptr_t>(object));
}

constexpr DWORD any_encoding = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;

}  // namespace

ports::Result Signatures::verify(const wchar_t* path) {
  WINTRUST_FILE_INFO file{};
  file.cbStruct = sizeof file;
  file.pcwszFilePath = path;
  TrustData data{};
  data.cbStruct = sizeof data;
  data.dwUIChoice = WTD_UI_NONE;
  data.fdwRevocationChecks = WTD_REVOKE_NONE;
  data.dwUnionChoice = WTD_CHOICE_FILE;
  data.pFile = &file;
  data.dwStateAction = WTD_STATEACTION_IGNORE;
  GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
  return WinVerifyTrust(nullptr, &action, &data);
}

bool Signatures::query(const wchar_t* path, ports::CertificateStore& store, ports::SignedMessage& message) {
  HCERTSTORE found_store = nullptr;
  HCRYPTMSG found_message = nullptr;
  if (!CryptQueryObject(CERT_QUERY_OBJECT_FILE, path, CERT_QUERY_CONTENT_FLAG_PKCS7_SIGNED_EMBED,
                        CERT_QUERY_FORMAT_FLAG_BINARY, 0, nullptr, nullptr, nullptr, &found_store, &found_message,
                        nullptr)) {
    return false;
  }
  store = ported<ports::CertificateStore>(found_store);
  message = ported<ports::SignedMessage>(found_message);
  return true;
}

void Signatures::close(ports::CertificateStore store) {
  CertCloseStore(native(store), 0);
}

void Signatures::close(ports::SignedMessage message) {
  CryptMsgClose(native(message));
}

bool Signatures::signer_info(ports::SignedMessage message, std::uint8_t* into, std::uint32_t& size) {
  DWORD bytes = size;
  const BOOL done = CryptMsgGetParam(native(message), CMSG_SIGNER_INFO_PARAM, 0, into, &bytes);
  size = bytes;
  return done != FALSE;
}

ports::Certificate Signatures::find_certificate(ports::CertificateStore store, const std::uint8_t* signer_info) {
  const auto& signer = *reinterpret_cast<const CMSG_SIGNER_INFO*>(signer_info);
  CERT_INFO wanted{};
  wanted.Issuer = signer.Issuer;
  wanted.SerialNumber = signer.SerialNumber;
  return ported<ports::Certificate>(
      CertFindCertificateInStore(native(store), any_encoding, 0, CERT_FIND_SUBJECT_CERT, &wanted, nullptr));
}

void Signatures::free(ports::Certificate certificate) {
  CertFreeCertificateContext(native(certificate));
}

std::optional<std::vector<std::uint8_t>> Signatures::serial_number(ports::Certificate certificate) {
  const CERT_INFO* const info = native(certificate)->pCertInfo;
  if (info == nullptr) return std::nullopt;
  return std::vector<std::uint8_t>(info->SerialNumber.pbData, info->SerialNumber.pbData + info->SerialNumber.cbData);
}

std::uint32_t Signatures::name(ports::Certificate certificate, ports::NameOf which, std::span<wchar_t> into) {
  return CertGetNameStringW(native(certificate), CERT_NAME_SIMPLE_DISPLAY_TYPE,
                            which == ports::NameOf::issuer ? CERT_NAME_ISSUER_FLAG : 0, nullptr,
                            into.empty() ? nullptr : into.data(), static_cast<DWORD>(into.size()));
}

}  // namespace win32
