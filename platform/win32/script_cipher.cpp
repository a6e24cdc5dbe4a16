#include "platform/win32/script_cipher.h"

#include <algorithm>
#include <iterator>

#include "platform/ports/codes.h"

namespace win32 {

namespace {

/// A plain key in the form that CryptImportKey takes.
struct KeyBlob {
  BLOBHEADER header;
  DWORD size;
  BYTE bytes[ScriptCipher::key_size];
};

}  // namespace

std::uintptr_t ScriptCipher::import_key(std::span<const std::uint8_t, key_size> bytes) {
  const HCRYPTPROV provider = provider_.get();
  if (provider == 0) return 0;
  KeyBlob blob{};
  blob.header = {PLAINTEXTKEYBLOB, CUR_BLOB_VERSION, 0, CALG_AES_256};
  blob.size = key_size;
  std::copy(bytes.begin(), bytes.end(), std::begin(blob.bytes));
  CryptoKey key;
  const BOOL imported =
      CryptImportKey(provider, reinterpret_cast<const BYTE*>(&blob), sizeof blob, 0, 0, key.receive());
  SecureZeroMemory(&blob, sizeof blob);
  if (!provider_.told(imported)) return 0;
  DWORD mode = CRYPT_MODE_CBC;  // A new key's IV is all zeroes.
  if (!provider_.told(CryptSetKeyParam(key.get(), KP_MODE, reinterpret_cast<const BYTE*>(&mode), 0))) return 0;
  return key.detach();
}

void ScriptCipher::destroy_key(std::uintptr_t key) {
  CryptDestroyKey(key);
}

bool ScriptCipher::decode_base64(const wchar_t* text, std::uint32_t length, std::span<std::uint8_t> into,
                                 std::uint32_t& size) {
  DWORD count = static_cast<DWORD>(into.size());
  if (!provider_.told(CryptStringToBinaryW(text, length, CRYPT_STRING_BASE64, into.data(), &count, nullptr, nullptr))) {
    return false;
  }
  size = count;
  return true;
}

bool ScriptCipher::decrypt(std::uintptr_t key, std::uint8_t* bytes, std::uint32_t& size) {
  if (size == 0) {  // Some providers read the padding's length before the buffer.
    errors_.set_last(ports::code::bad_cipher_data);
    return false;
  }
  DWORD count = size;
  if (!provider_.told(CryptDecrypt(key, 0, TRUE, 0, bytes, &count))) return false;
  size = count;
  return true;
}

std::vector<std::uint8_t> ScriptCipher::encrypt(std::uintptr_t key, std::span<const std::uint8_t> plain) {
  std::vector<std::uint8_t> bytes(plain.begin(), plain.end());
  bytes.resize((plain.size() / block_size + 1) * block_size);
  DWORD count = static_cast<DWORD>(plain.size());
  if (!provider_.told(CryptEncrypt(key, 0, TRUE, 0, bytes.data(), &count, static_cast<DWORD>(bytes.size())))) return {};
  bytes.resize(count);
  return bytes;
}

}  // namespace win32
