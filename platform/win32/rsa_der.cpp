#include "platform/win32/rsa_der.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace win32 {

namespace {

using Bytes = std::vector<std::uint8_t>;

namespace tag {
constexpr std::uint8_t integer = 0x02;
constexpr std::uint8_t bit_string = 0x03;
constexpr std::uint8_t octet_string = 0x04;
constexpr std::uint8_t sequence = 0x30;
}  // namespace tag

// AlgorithmIdentifier of rsaEncryption, 1.2.840.113549.1.1.1, with its null parameters.
constexpr std::uint8_t rsa_encryption[] = {0x30, 0x0D, 0x06, 0x09, 0x2A, 0x86, 0x48, 0x86,
                                           0xF7, 0x0D, 0x01, 0x01, 0x01, 0x05, 0x00};
constexpr std::uint8_t version_0[] = {0x02, 0x01, 0x00};

Bytes joined(std::initializer_list<std::span<const std::uint8_t>> parts) {
  Bytes all;
  for (const auto part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Bytes element(std::uint8_t kind, std::span<const std::uint8_t> content) {
  Bytes head{kind};
  const std::size_t size = content.size();
  if (size < 0x80) {
    head.push_back(static_cast<std::uint8_t>(size));
  } else if (size < 0x100) {
    head.insert(head.end(), {0x81, static_cast<std::uint8_t>(size)});
  } else {
    head.insert(head.end(), {0x82, static_cast<std::uint8_t>(size >> 8), static_cast<std::uint8_t>(size)});
  }
  return joined({head, content});
}

/// A number from its little-endian bytes.
Bytes integer(std::span<const std::uint8_t> little_endian) {
  Bytes digits(little_endian.rbegin(), little_endian.rend());
  const auto first = std::find_if(digits.begin(), digits.end(), [](std::uint8_t digit) { return digit != 0; });
  digits.erase(digits.begin(), first);
  if (digits.empty() || digits.front() >= 0x80) digits.insert(digits.begin(), 0);  // Else it would be negative.
  return element(tag::integer, digits);
}

std::uint32_t number(std::span<const std::uint8_t> bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) value = (value << 8) | bytes[at + i];
  return value;
}

// The blob: an 8-byte header, magic, bits and exponent of 4 bytes each, then the numbers, least byte first.
constexpr std::size_t magic_at = 8, bits_at = 12, exponent_at = 16, numbers_at = 20;
constexpr std::uint32_t rsa_private_magic = 0x32415352;  // "RSA2"

}  // namespace

bool rsa_pair_from_blob(std::span<const std::uint8_t> blob, ports::RsaPair& out) {
  if (blob.size() < numbers_at || number(blob, magic_at) != rsa_private_magic) return false;
  const std::size_t whole = number(blob, bits_at) / 8, half = whole / 2;
  if (half == 0 || blob.size() < numbers_at + 2 * whole + 5 * half) return false;

  std::size_t at = numbers_at;
  const auto take = [&](std::size_t size) {
    at += size;
    return integer(blob.subspan(at - size, size));
  };
  const Bytes exponent = integer(blob.subspan(exponent_at, 4));
  const Bytes modulus = take(whole);
  const Bytes prime1 = take(half), prime2 = take(half);
  const Bytes exponent1 = take(half), exponent2 = take(half), coefficient = take(half);
  const Bytes private_exponent = take(whole);

  const Bytes private_key = element(tag::sequence, joined({version_0, modulus, exponent, private_exponent, prime1,
                                                           prime2, exponent1, exponent2, coefficient}));
  const Bytes public_key = element(tag::sequence, joined({modulus, exponent}));
  constexpr std::uint8_t no_unused_bits[] = {0};
  out.private_key =
      element(tag::sequence, joined({version_0, rsa_encryption, element(tag::octet_string, private_key)}));
  out.public_key =
      element(tag::sequence, joined({rsa_encryption, element(tag::bit_string, joined({no_unused_bits, public_key}))}));
  return true;
}

}  // namespace win32
