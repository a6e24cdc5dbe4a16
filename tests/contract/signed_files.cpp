#include "tests/contract/signed_files.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <wincrypt.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "installer/utils/base/strings/utf8.h"

namespace contract {

namespace {

std::string signed_path(const std::string& name) {
  std::string path = "Z:" KY_SIGNED_FOLDER "/" + name;
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

}  // namespace

std::wstring signed_file(const std::wstring& name) {
  return base::strings::to_wide(signed_path(base::strings::to_utf8(name)));
}

void trust_test_authority() {
  ASSERT_NE(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version"), nullptr)
      << "this computer must not trust a test authority";
  std::ifstream file(signed_path("authority.der"), std::ios::binary);
  const std::string certificate{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_LOCAL_MACHINE, L"Root");
  ASSERT_NE(store, nullptr);
  // Left where it is once it is there: other tests may be looking.
  EXPECT_TRUE(CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING,
                                               reinterpret_cast<const BYTE*>(certificate.data()),
                                               static_cast<DWORD>(certificate.size()), CERT_STORE_ADD_NEW, nullptr) ||
              GetLastError() == static_cast<DWORD>(CRYPT_E_EXISTS))
      << GetLastError();
  CertCloseStore(store, 0);
}

}  // namespace contract
