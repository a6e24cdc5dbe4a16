#include "platform/win32/key_maker.h"

#include "platform/ports/codes.h"
#include "platform/win32/rsa_der.h"

namespace win32 {

bool KeyMaker::random(std::span<std::uint8_t> into) {
  const HCRYPTPROV provider = provider_.get();
  return provider != 0 && provider_.told(CryptGenRandom(provider, static_cast<DWORD>(into.size()), into.data()));
}

bool KeyMaker::rsa_pair(std::uint32_t bits, ports::RsaPair& out) {
  const HCRYPTPROV provider = provider_.get();
  CryptoKey pair;
  // The upper half of the flags is the length in bits.
  if (provider == 0 ||
      !provider_.told(CryptGenKey(provider, AT_KEYEXCHANGE, (bits << 16) | CRYPT_EXPORTABLE, pair.receive()))) {
    return false;
  }
  DWORD size = 0;
  if (!provider_.told(CryptExportKey(pair.get(), 0, PRIVATEKEYBLOB, 0, nullptr, &size))) return false;
  std::vector<std::uint8_t> blob(size);
  const bool exported = provider_.told(CryptExportKey(pair.get(), 0, PRIVATEKEYBLOB, 0, blob.data(), &size));
  const bool made = exported && rsa_pair_from_blob({blob.data(), size}, out);
  SecureZeroMemory(blob.data(), blob.size());
  if (exported && !made) errors_.set_last(ports::code::bad_cipher_key);
  return made;
}

}  // namespace win32
