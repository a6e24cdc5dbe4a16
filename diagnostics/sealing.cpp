#include "diagnostics/sealing.h"

#include <stdexcept>

#include "diagnostics/log_public_key.h"
#include "installer/extern/base/include/winapi/win_error_category.h"
#include "platform/ports/codes.h"

namespace diagnostics {

namespace {

ports::Cng& cng() {
  return ports::system().cng;
}

void check(ports::Status status, const char* what) {
  if (!ports::status_ok(status)) winapi::raise(cng().error_of(status), what);
}

}  // namespace

CngAlgorithmOwner open_algorithm(const wchar_t* identifier) {
  ports::CngAlgorithm opened = ports::CngAlgorithm::null;
  check(cng().open_algorithm(identifier, opened), "::BCryptOpenAlgorithmProvider has failed.");
  return CngAlgorithmOwner(opened);
}

std::vector<std::uint8_t> random_bytes(std::size_t count) {
  const CngAlgorithmOwner rng = open_algorithm(L"RNG");
  std::vector<std::uint8_t> bytes(count);
  for (std::uint8_t& byte : bytes) check(cng().random(rng.get(), {&byte, 1}), "::BCryptGenRandom has failed.");
  return bytes;
}

CngKeyOwner generate_key(ports::CngAlgorithm algorithm, std::span<const std::uint8_t> secret) {
  ports::CngKey key = ports::CngKey::null;
  check(cng().generate_key(algorithm, secret, key), "::BCryptGenerateSymmetricKey has failed.");
  return CngKeyOwner(key);
}

std::uint32_t block_length(ports::CngKey key) {
  std::uint32_t length = 0;
  check(cng().block_length(key, length), "::BCryptGetProperty has failed.");
  return length;
}

std::vector<std::uint8_t> wrap_session_key(ports::CngKey key) {
  constexpr const char* export_failed = "::BCryptExportKey has failed.";
  const CngAlgorithmOwner rsa = open_algorithm(L"RSA");
  ports::CngKey imported = ports::CngKey::null;
  check(cng().import_public_key(rsa.get(), log_public_key(), imported), "::BCryptImportKeyPair has failed.");
  const CngKeyOwner public_key(imported);
  // RSA looks at no IV, but `encrypt_buffer` wants one.
  std::vector<std::uint8_t> iv(block_length(public_key.get()));
  std::uint32_t size = 0;
  check(cng().export_key(key, {}, size), export_failed);
  std::vector<std::uint8_t> blob(size);
  check(cng().export_key(key, blob, size), export_failed);
  return encrypt_buffer(public_key.get(), blob, iv, ports::cng_padding::pkcs1);
}

std::uint32_t encrypted_size(ports::CngKey key, std::span<const std::uint8_t> plain, std::vector<std::uint8_t>& iv,
                             std::uint32_t padding) {
  if (iv.empty()) throw std::out_of_range("invalid vector<T> subscript");
  const std::uint32_t size = encrypt_into(key, plain, iv, padding, {});
  if (size < plain.size()) winapi::raise(ports::code::internal_error, "provided data is too long to be encrypted");
  return size;
}

std::uint32_t encrypt_into(ports::CngKey key, std::span<const std::uint8_t> plain, std::vector<std::uint8_t>& iv,
                           std::uint32_t padding, std::span<std::uint8_t> into) {
  std::uint32_t size = 0;
  check(cng().encrypt(key, plain, iv, into, size, padding), "::BCryptEncrypt has failed.");
  return size;
}

std::vector<std::uint8_t> encrypt_buffer(ports::CngKey key, std::span<const std::uint8_t> plain,
                                         std::vector<std::uint8_t>& iv, std::uint32_t padding) {
  std::vector<std::uint8_t> cipher(encrypted_size(key, plain, iv, padding));
  cipher.resize(encrypt_into(key, plain, iv, padding, cipher));
  return cipher;
}

}  // namespace diagnostics
