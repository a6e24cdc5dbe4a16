#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/param_build.h>
#include <openssl/rsa.h>

#include <utility>

#include "platform/native/cng_keys.h"

namespace native {

namespace status = ports::status;
using ports::Status;

namespace {

using Bytes = std::span<const std::uint8_t>;

template <auto Free>
struct Freed {
  template <class T>
  void operator()(T* object) const {
    Free(object);
  }
};
using Number = std::unique_ptr<BIGNUM, Freed<BN_clear_free>>;
using Numbers = std::unique_ptr<BN_CTX, Freed<BN_CTX_free>>;
using Builder = std::unique_ptr<OSSL_PARAM_BLD, Freed<OSSL_PARAM_BLD_free>>;
using Parameters = std::unique_ptr<OSSL_PARAM, Freed<OSSL_PARAM_free>>;
using Context = std::unique_ptr<EVP_PKEY_CTX, Freed<EVP_PKEY_CTX_free>>;
using Pair = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>>;

// BCRYPT_RSAKEY_BLOB: magic, bits of the modulus, and the sizes of exponent, modulus and both primes; then these
// numbers, the most significant byte first.
constexpr std::size_t header_size = 24;
constexpr std::uint32_t public_magic = 0x31415352;   // "RSA1"
constexpr std::uint32_t private_magic = 0x32415352;  // "RSA2"

struct RsaNumbers {
  Bytes exponent, modulus, prime1, prime2;
};

[[nodiscard]] std::uint32_t number_at(Bytes bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = value << 8 | bytes[at + i];
  return value;
}

/// Empty numbers where the bytes are no blob of that kind.
[[nodiscard]] RsaNumbers numbers_of(Bytes blob, std::uint32_t magic) {
  if (blob.size() < header_size || number_at(blob, 0) != magic) return {};
  std::uint64_t whole = header_size;
  for (const std::size_t at : {8U, 12U, 16U, 20U}) whole += number_at(blob, at);
  if (blob.size() != whole || (number_at(blob, 4) + 7) / 8 != number_at(blob, 12)) return {};
  std::size_t at = header_size;
  const auto take = [&](std::size_t size_at) {
    const std::size_t size = number_at(blob, size_at);
    return blob.subspan(std::exchange(at, at + size), size);
  };
  RsaNumbers numbers;
  numbers.exponent = take(8);
  numbers.modulus = take(12);
  numbers.prime1 = take(16);
  numbers.prime2 = take(20);
  return numbers;
}

[[nodiscard]] Number number(Bytes big_endian) {
  return Number(BN_bin2bn(big_endian.data(), static_cast<int>(big_endian.size()), nullptr));
}

/// The exponent that undoes `exponent`; null where there is none.
[[nodiscard]] Number private_exponent(const BIGNUM* exponent, const BIGNUM* prime1, const BIGNUM* prime2) {
  const Numbers scratch(BN_CTX_secure_new());
  const Number less1(BN_dup(prime1)), less2(BN_dup(prime2)), order(BN_secure_new());
  if (scratch == nullptr || less1 == nullptr || less2 == nullptr || order == nullptr ||
      BN_sub_word(less1.get(), 1) != 1 || BN_sub_word(less2.get(), 1) != 1 ||
      BN_mul(order.get(), less1.get(), less2.get(), scratch.get()) != 1) {
    return nullptr;
  }
  return Number(BN_mod_inverse(nullptr, exponent, order.get(), scratch.get()));
}

class RsaKey final : public CngKeyObject {
 public:
  RsaKey(Pair pair, std::uint32_t length) : pair_(std::move(pair)), length_(length) {}

  [[nodiscard]] std::uint32_t block_length() const override { return length_; }
  [[nodiscard]] Status export_to(std::span<std::uint8_t>, std::uint32_t&) const override {
    return status::not_supported;
  }
  [[nodiscard]] Status encrypt(Bytes plain, Bytes, std::span<std::uint8_t> into, std::uint32_t& size,
                               std::uint32_t padding) override {
    return turn(plain, into, size, padding, EVP_PKEY_encrypt_init, EVP_PKEY_encrypt);
  }
  [[nodiscard]] Status decrypt(Bytes cipher, Bytes, std::span<std::uint8_t> into, std::uint32_t& size,
                               std::uint32_t padding) override {
    return turn(cipher, into, size, padding, EVP_PKEY_decrypt_init, EVP_PKEY_decrypt);
  }

 private:
  template <class Begin, class Act>
  [[nodiscard]] Status turn(Bytes from, std::span<std::uint8_t> into, std::uint32_t& size, std::uint32_t padding,
                            Begin begin, Act act) const {
    if (padding != ports::cng_padding::pkcs1) return status::invalid_parameter;
    size = length_;
    if (into.empty()) return status::success;
    if (into.size() < size) return status::buffer_too_small;
    const Context context(EVP_PKEY_CTX_new(pair_.get(), nullptr));
    std::size_t written = into.size();
    if (context == nullptr || begin(context.get()) != 1 ||
        EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1 ||
        act(context.get(), into.data(), &written, from.data(), from.size()) != 1) {
      ERR_clear_error();
      return status::invalid_parameter;
    }
    size = static_cast<std::uint32_t>(written);
    return status::success;
  }

  const Pair pair_;
  const std::uint32_t length_;
};

[[nodiscard]] std::unique_ptr<CngKeyObject> key_of(OSSL_PARAM_BLD* builder, int selection, std::size_t length) {
  const Parameters parameters(OSSL_PARAM_BLD_to_param(builder));
  const Context context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
  EVP_PKEY* made = nullptr;
  if (parameters == nullptr || context == nullptr || EVP_PKEY_fromdata_init(context.get()) != 1 ||
      EVP_PKEY_fromdata(context.get(), &made, selection, parameters.get()) != 1) {
    ERR_clear_error();
    return nullptr;
  }
  return std::make_unique<RsaKey>(Pair(made), static_cast<std::uint32_t>(length));
}

[[nodiscard]] bool push(OSSL_PARAM_BLD* builder, const char* name, const Number& value) {
  return value != nullptr && OSSL_PARAM_BLD_push_BN(builder, name, value.get()) == 1;
}

}  // namespace

std::unique_ptr<CngKeyObject> rsa_public_key(Bytes blob) {
  const RsaNumbers numbers = numbers_of(blob, public_magic);
  const Builder builder(OSSL_PARAM_BLD_new());
  const Number modulus = number(numbers.modulus), exponent = number(numbers.exponent);
  if (numbers.modulus.empty() || builder == nullptr || !push(builder.get(), OSSL_PKEY_PARAM_RSA_N, modulus) ||
      !push(builder.get(), OSSL_PKEY_PARAM_RSA_E, exponent)) {
    return nullptr;
  }
  return key_of(builder.get(), EVP_PKEY_PUBLIC_KEY, numbers.modulus.size());
}

std::unique_ptr<CngKeyObject> rsa_private_key(Bytes blob) {
  const RsaNumbers numbers = numbers_of(blob, private_magic);
  if (numbers.prime1.empty() || numbers.prime2.empty()) return nullptr;
  const Builder builder(OSSL_PARAM_BLD_new());
  const Number modulus = number(numbers.modulus), exponent = number(numbers.exponent);
  const Number prime1 = number(numbers.prime1), prime2 = number(numbers.prime2);
  if (builder == nullptr || modulus == nullptr || exponent == nullptr || prime1 == nullptr || prime2 == nullptr) {
    return nullptr;
  }
  const Number secret = private_exponent(exponent.get(), prime1.get(), prime2.get());
  if (!push(builder.get(), OSSL_PKEY_PARAM_RSA_N, modulus) || !push(builder.get(), OSSL_PKEY_PARAM_RSA_E, exponent) ||
      !push(builder.get(), OSSL_PKEY_PARAM_RSA_D, secret)) {
    ERR_clear_error();
    return nullptr;
  }
  return key_of(builder.get(), EVP_PKEY_KEYPAIR, numbers.modulus.size());
}

}  // namespace native
