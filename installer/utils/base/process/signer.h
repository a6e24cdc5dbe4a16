#pragma once

#include <string>
#include <system_error>

#include "platform/ports/types.h"

namespace base::process {

/// A certificate as it is told to people.
struct CertificateNames {
  std::wstring serialNumber;  // lower-case hexadecimal, in display order
  std::wstring issuer;
  std::wstring subject;
};

/// Who signed a file. Only `signing` is ever filled.
struct SignerInfo {
  CertificateNames signing;
  CertificateNames countersigning;
};

/// True where the system trusts the file's embedded signature (WinVerifyTrust, no user interface, no revocation check).
/// A subject that is not trusted gives false with a clear `error`, anything else false with the result in `error`.
[[nodiscard]] bool IsFileTrusted(const std::wstring& path, std::error_code& error);

/// Reads who signed a file, trusted or not. On failure the record is empty and `error` has the code; without the
/// signer's certificate in the signature that is 13 (invalid data).
[[nodiscard]] SignerInfo ReadSignerInfo(const std::wstring& path, std::error_code& error);

/// Who signed this process's program, read once for the bound system; empty for an unsigned one.
[[nodiscard]] const SignerInfo& GetOwnSignerInfo();

/// Loads a library that the system trusts and that is signed under `expected`'s subject; serial number and issuer play
/// no part. The file is held against writers from the check to the end of the load. Where `expected` has no subject, as
/// an unsigned program has none, anything is loaded. Null on refusal or failure.
[[nodiscard]] ports::Module LoadLibraryFromSameSigner(const std::wstring& path, const SignerInfo& expected);

}  // namespace base::process
