#include "diagnostics/rsa_blob.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>

#include "installer/utils/base/strings/base64.h"

namespace diagnostics {

namespace {

using Bytes = std::span<const std::uint8_t>;

enum class Tag : std::uint8_t { integer = 0x02, bit_string = 0x03, octet_string = 0x04, sequence = 0x30 };

// AlgorithmIdentifier of rsaEncryption, 1.2.840.113549.1.1.1, with its null parameters.
constexpr std::uint8_t rsa_encryption[] = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7,
                                           0x0D, 0x01, 0x01, 0x01, 0x05, 0x00};

/// Takes the elements of DER one after another. After something else than was asked for, all that follows is empty.
class DerReader {
 public:
  explicit DerReader(Bytes bytes) : rest_(bytes) {}

  [[nodiscard]] Bytes take(Tag tag) {
    const std::size_t head = good_ && !rest_.empty() && rest_[0] == static_cast<std::uint8_t>(tag) ? measure() : 0;
    good_ = head != 0;
    if (!good_) return {};
    const Bytes content = rest_.subspan(head, size_);
    rest_ = rest_.subspan(head + size_);
    return content;
  }

  /// A positive number without its leading zeros.
  [[nodiscard]] Bytes take_number() {
    Bytes digits = take(Tag::integer);
    while (!digits.empty() && digits[0] == 0) digits = digits.subspan(1);
    return digits;
  }

  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] bool at_end() const { return good_ && rest_.empty(); }

 private:
  /// Gives the length of tag and size, 0 where the element is not whole, and sets `size_`.
  [[nodiscard]] std::size_t measure() {
    if (rest_.size() < 2) return 0;
    std::size_t head = 2;
    size_ = rest_[1];
    if (size_ >= 0x80) {
      const std::size_t digits = size_ - 0x80;
      if (digits == 0 || digits > 4 || rest_.size() < head + digits) return 0;
      size_ = 0;
      for (std::size_t i = 0; i < digits; ++i) size_ = size_ << 8 | rest_[head++];
    }
    return size_ <= rest_.size() - head ? head : 0;
  }

  Bytes rest_;
  std::size_t size_ = 0;
  bool good_ = true;
};

[[nodiscard]] bool same(Bytes left, Bytes right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

void put(std::vector<std::uint8_t>& to, std::size_t number) {
  for (std::size_t i = 0; i < 4; ++i) to.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

/// The header and the numbers behind it, the most significant byte first.
[[nodiscard]] std::vector<std::uint8_t> blob(std::string_view magic, Bytes exponent, Bytes modulus, Bytes prime1,
                                             Bytes prime2) {
  if (exponent.empty() || modulus.empty() || modulus[0] < 0x80) return {};
  std::vector<std::uint8_t> bytes(magic.begin(), magic.end());
  for (const std::size_t number : {modulus.size() * 8, exponent.size(), modulus.size(), prime1.size(), prime2.size()}) {
    put(bytes, number);
  }
  for (const Bytes number : {exponent, modulus, prime1, prime2})
    bytes.insert(bytes.end(), number.begin(), number.end());
  return bytes;
}

}  // namespace

std::vector<std::uint8_t> der_in_pem(std::string_view text, std::string_view label) {
  const std::string begin = "-----BEGIN " + std::string(label) + "-----";
  const std::size_t first = text.find(begin);
  if (first == std::string_view::npos) return {};
  text.remove_prefix(first + begin.size());
  const std::size_t last = text.find("-----END " + std::string(label) + "-----");
  if (last == std::string_view::npos) return {};
  std::string digits(text.substr(0, last));
  std::erase_if(digits, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
  return base::strings::decode_base64(digits).value_or(std::vector<std::uint8_t>());
}

std::vector<std::uint8_t> private_key_blob(std::span<const std::uint8_t> der) {
  DerReader whole(der);
  DerReader info(whole.take(Tag::sequence));
  const bool version_0 = same(info.take(Tag::integer), std::array<std::uint8_t, 1>{0});
  const bool rsa = same(info.take(Tag::sequence), rsa_encryption);
  DerReader wrapped(info.take(Tag::octet_string));
  DerReader numbers(wrapped.take(Tag::sequence));
  if (!whole.at_end() || !version_0 || !rsa || !wrapped.at_end()) return {};
  const bool two_primes = same(numbers.take(Tag::integer), std::array<std::uint8_t, 1>{0});
  const Bytes modulus = numbers.take_number(), exponent = numbers.take_number();
  static_cast<void>(numbers.take_number());  // the private exponent, which follows from the primes
  const Bytes prime1 = numbers.take_number(), prime2 = numbers.take_number();
  if (!numbers.good() || !two_primes || prime1.size() * 2 != modulus.size() || prime2.size() * 2 != modulus.size()) {
    return {};
  }
  return blob("RSA2", exponent, modulus, prime1, prime2);
}

std::vector<std::uint8_t> public_key_blob(std::span<const std::uint8_t> der) {
  DerReader whole(der);
  DerReader info(whole.take(Tag::sequence));
  const bool rsa = same(info.take(Tag::sequence), rsa_encryption);
  const Bytes bits = info.take(Tag::bit_string);
  if (!whole.at_end() || !rsa || !info.at_end() || bits.empty() || bits[0] != 0) return {};
  DerReader wrapped(bits.subspan(1));
  DerReader numbers(wrapped.take(Tag::sequence));
  const Bytes modulus = numbers.take_number(), exponent = numbers.take_number();
  return wrapped.at_end() && numbers.at_end() ? blob("RSA1", exponent, modulus, {}, {}) : std::vector<std::uint8_t>();
}

}  // namespace diagnostics
