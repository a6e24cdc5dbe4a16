#include "platform/native/cng.h"

#include <openssl/rand.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "platform/native/cng_keys.h"
#include "platform/ports/codes.h"

namespace native {

namespace code = ports::code;
namespace status = ports::status;
using ports::CngAlgorithm;
using ports::CngKey;
using ports::Status;

namespace {

// An algorithm has no state; its handle is its place in this table, counted from 1.
struct Algorithm {
  std::wstring_view identifier;
  const EVP_CIPHER* (*cipher_of)(std::size_t key_size);
};
constexpr Algorithm algorithms[] = {{L"RNG", nullptr}, {L"RSA", nullptr}, {L"AES", aes_of}, {L"3DES", triple_des_of}};
constexpr CngAlgorithm rng_algorithm{1};
constexpr CngAlgorithm rsa_algorithm{2};

struct StatusRow {
  Status status;
  ports::ErrorCode error;
};
// As the system's table has it.
constexpr StatusRow errors[] = {
    {status::success, code::success},
    {0x103, 996},  // pending: ERROR_IO_INCOMPLETE
    {status::unsuccessful, code::gen_failure},
    {status::not_implemented, code::invalid_function},
    {status::invalid_handle, code::invalid_handle},
    {status::invalid_parameter, code::invalid_parameter},
    {status::no_memory, code::not_enough_memory},
    {status::buffer_too_small, code::insufficient_buffer},
    {status::data_error, 23},             // ERROR_CRC
    {status::not_supported, 50},          // ERROR_NOT_SUPPORTED
    {status::invalid_buffer_size, 1784},  // ERROR_INVALID_USER_BUFFER
    {status::not_found, code::not_found},
};
constexpr ports::ErrorCode no_such_message = 317;  // ERROR_MR_MID_NOT_FOUND: the system's answer to what it lacks

[[nodiscard]] CngKeyObject* object(CngKey key) {
  return reinterpret_cast<CngKeyObject*>(key);
}

[[nodiscard]] Status hand_out(std::unique_ptr<CngKeyObject> made, CngKey& out) {
  if (made == nullptr) return status::invalid_parameter;
  out = CngKey{reinterpret_cast<std::uintptr_t>(made.release())};
  return status::success;
}

}  // namespace

Status OpensslCng::open_algorithm(const wchar_t* identifier, CngAlgorithm& out) {
  if (identifier == nullptr) return status::invalid_parameter;
  const auto found = std::find_if(std::begin(algorithms), std::end(algorithms),
                                  [identifier](const Algorithm& known) { return known.identifier == identifier; });
  if (found == std::end(algorithms)) return status::not_found;
  out = CngAlgorithm{static_cast<std::uintptr_t>(found - algorithms) + 1};
  return status::success;
}

void OpensslCng::close_algorithm(CngAlgorithm) {}

Status OpensslCng::random(CngAlgorithm rng, std::span<std::uint8_t> into) {
  if (rng != rng_algorithm) return status::invalid_handle;
  return RAND_bytes(into.data(), static_cast<int>(into.size())) == 1 ? status::success : status::unsuccessful;
}

Status OpensslCng::generate_key(CngAlgorithm algorithm, std::span<const std::uint8_t> secret, CngKey& out) {
  const auto place = static_cast<std::uintptr_t>(algorithm);
  if (place == 0 || place > std::size(algorithms)) return status::invalid_handle;
  const Algorithm& known = algorithms[place - 1];
  if (known.cipher_of == nullptr) return status::not_supported;
  const EVP_CIPHER* const cipher = known.cipher_of(secret.size());
  return hand_out(cipher == nullptr ? nullptr : std::make_unique<BlockKey>(cipher, secret), out);
}

Status OpensslCng::import_public_key(CngAlgorithm rsa, std::span<const std::uint8_t> blob, CngKey& out) {
  return rsa == rsa_algorithm ? hand_out(rsa_public_key(blob), out) : status::invalid_handle;
}

Status OpensslCng::import_private_key(CngAlgorithm rsa, std::span<const std::uint8_t> blob, CngKey& out) {
  return rsa == rsa_algorithm ? hand_out(rsa_private_key(blob), out) : status::invalid_handle;
}

void OpensslCng::destroy_key(CngKey key) {
  delete object(key);
}

Status OpensslCng::block_length(CngKey key, std::uint32_t& out) {
  if (key == CngKey::null) return status::invalid_handle;
  out = object(key)->block_length();
  return status::success;
}

Status OpensslCng::export_key(CngKey key, std::span<std::uint8_t> into, std::uint32_t& size) {
  return key == CngKey::null ? status::invalid_handle : object(key)->export_to(into, size);
}

Status OpensslCng::encrypt(CngKey key, std::span<const std::uint8_t> plain, std::span<std::uint8_t> iv,
                           std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) {
  return key == CngKey::null ? status::invalid_handle : object(key)->encrypt(plain, iv, into, size, padding);
}

Status OpensslCng::decrypt(CngKey key, std::span<const std::uint8_t> cipher, std::span<std::uint8_t> iv,
                           std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding) {
  return key == CngKey::null ? status::invalid_handle : object(key)->decrypt(cipher, iv, into, size, padding);
}

ports::ErrorCode OpensslCng::error_of(Status status) {
  const auto found = std::find_if(std::begin(errors), std::end(errors),
                                  [status](const StatusRow& row) { return row.status == status; });
  return found == std::end(errors) ? no_such_message : found->error;
}

}  // namespace native
