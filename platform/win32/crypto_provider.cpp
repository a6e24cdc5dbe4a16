#include "platform/win32/crypto_provider.h"

namespace win32 {

CryptoProvider::~CryptoProvider() {
  if (provider_ != 0) CryptReleaseContext(provider_, 0);
}

HCRYPTPROV CryptoProvider::get() {
  const ports::Lock lock(mutex_);
  if (provider_ == 0) told(CryptAcquireContextW(&provider_, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
  return provider_;
}

bool CryptoProvider::told(BOOL done) {
  if (!done) errors_.set_last(GetLastError());
  return done != FALSE;
}

}  // namespace win32
