#include "platform/win32/cng.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <vector>

namespace win32 {

namespace status = ports::status;
using ports::CngAlgorithm;
using ports::CngKey;
using ports::Status;

namespace {

[[nodiscard]] BCRYPT_ALG_HANDLE native(CngAlgorithm algorithm) {
  return reinterpret_cast<BCRYPT_ALG_HANDLE>(algorithm);
}

[[nodiscard]] BCRYPT_KEY_HANDLE native(CngKey key) {
  return reinterpret_cast<BCRYPT_KEY_HANDLE>(key);
}

/// The system's functions take what they only read as if they wrote it.
[[nodiscard]] UCHAR* writable(std::span<const std::uint8_t> bytes) {
  return const_cast<UCHAR*>(bytes.data());
}

[[nodiscard]] ULONG size_of(std::span<const std::uint8_t> bytes) {
  return static_cast<ULONG>(bytes.size());
}

[[nodiscard]] Status import(CngAlgorithm rsa, const wchar_t* form, std::span<const std::uint8_t> blob, CngKey& out) {
  BCRYPT_KEY_HANDLE key = nullptr;
  const Status result = BCryptImportKeyPair(native(rsa), nullptr, form, &key, writable(blob), size_of(blob), 0);
  if (ports::status_ok(result)) out = CngKey{reinterpret_cast<std::uintptr_t>(key)};
  return result;
}

/// The bytes of an RSA key's modulus; 0 for another key.
[[nodiscard]] std::uint32_t modulus_length(CngKey key) {
  ULONG size = 0;
  BCryptExportKey(native(key), nullptr, BCRYPT_RSAPUBLIC_BLOB, nullptr, 0, &size, 0);
  std::vector<UCHAR> blob(size);
  if (size < sizeof(BCRYPT_RSAKEY_BLOB) ||
      BCryptExportKey(native(key), nullptr, BCRYPT_RSAPUBLIC_BLOB, blob.data(), size, &size, 0) < 0) {
    return 0;
  }
  return reinterpret_cast<const BCRYPT_RSAKEY_BLOB*>(blob.data())->cbModulus;
}

[[nodiscard]] Status turn(decltype(BCryptEncrypt)* call, CngKey key, std::span<const std::uint8_t> from,
                          std::span<std::uint8_t> iv, std::span<std::uint8_t> into, std::uint32_t& size,
                          std::uint32_t padding) {
  ULONG written = 0;
  const Status result = call(native(key), writable(from), size_of(from), nullptr, iv.data(), size_of(iv),
                             into.empty() ? nullptr : into.data(), size_of(into), &written, padding);
  size = written;
  // So Wine answers where only the size is asked for.
  return into.empty() && result == status::buffer_too_small ? status::success : result;
}

}  // namespace

Status Cng::open_algorithm(const wchar_t* identifier, CngAlgorithm& out) {
  BCRYPT_ALG_HANDLE opened = nullptr;
  const Status result = BCryptOpenAlgorithmProvider(&opened, identifier, nullptr, 0);
  if (ports::status_ok(result)) out = CngAlgorithm{reinterpret_cast<std::uintptr_t>(opened)};
  return result;
}

void Cng::close_algorithm(CngAlgorithm algorithm) {
  if (algorithm != CngAlgorithm::null) BCryptCloseAlgorithmProvider(native(algorithm), 0);
}

Status Cng::random(CngAlgorithm rng, std::span<std::uint8_t> into) {
  return BCryptGenRandom(native(rng), into.data(), size_of(into), 0);
}

Status Cng::generate_key(CngAlgorithm algorithm, std::span<const std::uint8_t> secret, CngKey& out) {
  BCRYPT_KEY_HANDLE key = nullptr;
  const Status result =
      BCryptGenerateSymmetricKey(native(algorithm), &key, nullptr, 0, writable(secret), size_of(secret), 0);
  if (ports::status_ok(result)) out = CngKey{reinterpret_cast<std::uintptr_t>(key)};
  return result;
}

Status Cng::import_public_key(CngAlgorithm rsa, std::span<const std::uint8_t> blob, CngKey& out) {
  return import(rsa, BCRYPT_PUBLIC_KEY_BLOB, blob, out);
}

Status Cng::import_private_key(CngAlgorithm rsa, std::span<const std::uint8_t> blob, CngKey& out) {
  return import(rsa, BCRYPT_RSAPRIVATE_BLOB, blob, out);
}

void Cng::destroy_key(CngKey key) {
  if (key != CngKey::null) BCryptDestroyKey(native(key));
}

Status Cng::block_length(CngKey key, std::uint32_t& out) {
  ULONG length = 0;
  ULONG size = 0;
  const Status result =
      BCryptGetProperty(native(key), BCRYPT_BLOCK_LENGTH, reinterpret_cast<UCHAR*>(&length), sizeof length, &size, 0);
  out = length;
  if (result != status::not_implemented) return result;
  // Wine does not know this property of RSA keys.
  out = modulus_length(key);
  return out == 0 ? result : status::success;
}

Status Cng::export_key(CngKey key, std::span<std::uint8_t> into, std::uint32_t& size) {
  ULONG needed = 0;
  const Status result = BCryptExportKey(native(key), nullptr, BCRYPT_KEY_DATA_BLOB,
                                        into.empty() ? nullptr : into.data(), size_of(into), &needed, 0);
  size = needed;
  // So Wine answers where only the size is asked for.
  return into.empty() && result == status::buffer_too_small ? status::success : result;
}

Status Cng::encrypt(CngKey key, std::span<const std::uint8_t> plain, std::span<std::uint8_t> iv,
                    std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) {
  return turn(BCryptEncrypt, key, plain, iv, into, size, padding);
}

Status Cng::decrypt(CngKey key, std::span<const std::uint8_t> cipher, std::span<std::uint8_t> iv,
                    std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) {
  return padding == ports::cng_padding::none ? decrypt_bare(key, cipher, iv, into, size)
                                             : turn(BCryptDecrypt, key, cipher, iv, into, size, padding);
}

// Wine goes on with the chain of the last message where neither padding nor a new IV begins another. So each message
// gets an IV that no other had, and the first block, which is all that it has a part in, is set right afterwards.
Status Cng::decrypt_bare(CngKey key, std::span<const std::uint8_t> cipher, std::span<const std::uint8_t> iv,
                         std::span<std::uint8_t> into, std::uint32_t& size) {
  std::array<std::uint8_t, 16> changed{};
  if (iv.size() > changed.size()) return status::invalid_parameter;
  const std::uint64_t call = ++bare_calls_;
  for (std::size_t i = 0; i < iv.size(); ++i) {
    changed[i] = static_cast<std::uint8_t>(iv[i] ^ (i < sizeof call ? call >> (8 * i) : 0));
  }
  std::array<std::uint8_t, 16> difference{};
  for (std::size_t i = 0; i < iv.size(); ++i) difference[i] = static_cast<std::uint8_t>(iv[i] ^ changed[i]);
  const Status result =
      turn(BCryptDecrypt, key, cipher, std::span(changed).first(iv.size()), into, size, ports::cng_padding::none);
  if (!ports::status_ok(result)) return result;
  for (std::size_t i = 0; i < std::min(iv.size(), into.size()); ++i) {
    into[i] = static_cast<std::uint8_t>(into[i] ^ difference[i]);
  }
  return result;
}

ports::ErrorCode Cng::error_of(Status status) {
  const DWORD kept = GetLastError();
  OVERLAPPED overlapped{};
  overlapped.Internal = static_cast<ULONG_PTR>(status);
  DWORD transferred = 0;
  const BOOL done = GetOverlappedResult(nullptr, &overlapped, &transferred, FALSE);
  const DWORD error = done ? ERROR_SUCCESS : GetLastError();
  SetLastError(kept);
  return error;
}

}  // namespace win32
