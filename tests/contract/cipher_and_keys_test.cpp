#include <algorithm>
#include <array>

#include "diagnostics/rsa_blob.h"
#include "platform/ports/script_cipher.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

using Bytes = std::vector<std::uint8_t>;
namespace code = ports::code;

Bytes bytes_of(std::string_view text) {
  return {text.begin(), text.end()};
}

class CipherAndKeys : public Contract {
 protected:
  void SetUp() override {
    std::array<std::uint8_t, ports::ScriptCipher::key_size> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
    key_ = cipher().import_key(bytes);
    ASSERT_NE(key_, 0U) << last_error();
  }
  void TearDown() override { cipher().destroy_key(key_); }

  ports::ScriptCipher& cipher() { return system().cipher; }
  [[nodiscard]] std::uintptr_t key() const { return key_; }

  ports::ErrorCode decrypt(Bytes& bytes) {
    auto size = static_cast<std::uint32_t>(bytes.size());
    bytes.resize(bytes.size() + 1);  // So that there is a place to point at.
    const ports::ErrorCode result = code_of(cipher().decrypt(key_, bytes.data(), size));
    bytes.resize(size);
    return result;
  }

  ports::ErrorCode decode(std::wstring_view text, Bytes& bytes, std::size_t limit = 64) {
    bytes.assign(limit, 0);
    std::uint32_t size = 0;
    const auto length = static_cast<std::uint32_t>(text.size());
    const ports::ErrorCode result = code_of(cipher().decode_base64(text.data(), length, bytes, size));
    bytes.resize(result == 0 ? size : 0);
    return result;
  }

 private:
  std::uintptr_t key_ = 0;
};

TEST_P(CipherAndKeys, TheCipherIsAes256CbcWithAZeroIv) {
  const Bytes known = {0xAA, 0x7E, 0x8C, 0x9C, 0x44, 0xD2, 0x3A, 0x76, 0x0F, 0x32, 0x0B, 0x9F, 0x8E, 0x18, 0xB5, 0xB4};
  EXPECT_EQ(cipher().encrypt(key(), bytes_of("Nop")), known);
  for (const std::size_t size : {0U, 1U, 15U, 16U, 37U, 367U}) {
    const Bytes plain(size, 'x');
    Bytes turned = cipher().encrypt(key(), plain);
    EXPECT_EQ(turned.size(), (size / 16 + 1) * 16);
    EXPECT_EQ(cipher().encrypt(key(), plain), turned) << "each value starts anew";
    EXPECT_EQ(decrypt(turned), 0U);
    EXPECT_EQ(turned, plain);
  }
}

TEST_P(CipherAndKeys, WhatIsNoCipherTextIsRefused) {
  Bytes broken = cipher().encrypt(key(), bytes_of("value"));
  broken[15] = static_cast<std::uint8_t>(broken[15] ^ 0x5A);
  for (Bytes bytes : {Bytes{}, Bytes(15, 1), Bytes(17, 1), broken}) {
    EXPECT_EQ(decrypt(bytes), code::bad_cipher_data) << bytes.size();
  }
}

TEST_P(CipherAndKeys, Base64IsDecodedWithinItsLimit) {
  Bytes bytes;
  for (const auto& [text, plain] : {std::pair<std::wstring_view, std::string_view>{L"QUJD", "ABC"},
                                    {L"QUI=", "AB"},
                                    {L"QQ==", "A"},
                                    {L"+/+/", "\xFB\xFF\xBF"},
                                    {L"", ""}}) {
    EXPECT_EQ(decode(text, bytes), 0U);
    EXPECT_EQ(bytes, bytes_of(plain));
  }
  EXPECT_EQ(decode(L"QUJDREVG", bytes, 6), 0U);
  EXPECT_EQ(decode(L"Q*JD", bytes), code::invalid_data);
  const ports::ErrorCode too_small = decode(L"QUJDREVG", bytes, 5);
  EXPECT_NE(too_small, 0U);
  expect_but_for_wine_engines("base64 into a short buffer", too_small == code::more_data);
}

TEST_P(CipherAndKeys, FreshKeysDiffer) {
  std::array<std::uint8_t, 32> first{}, second{};
  EXPECT_TRUE(system().key_maker.random(first));
  EXPECT_TRUE(system().key_maker.random(second));
  EXPECT_NE(first, second);
}

TEST_P(CipherAndKeys, AnRsaPairIsOneKeyInTwoForms) {
  ports::RsaPair pair;
  ASSERT_TRUE(system().key_maker.rsa_pair(1024, pair)) << last_error();
  const Bytes open = diagnostics::public_key_blob(pair.public_key);
  const Bytes secret = diagnostics::private_key_blob(pair.private_key);
  ASSERT_EQ(open.size(), 24U + 3 + 128);
  ASSERT_EQ(secret.size(), open.size() + 2 * 64);
  EXPECT_EQ(Bytes(open.begin() + 24, open.begin() + 27), (Bytes{1, 0, 1}));
  EXPECT_TRUE(std::equal(open.begin() + 24, open.end(), secret.begin() + 24)) << "one exponent and one modulus";
  // A positive number that would pass for a negative one has a leading zero.
  const Bytes modulus(pair.public_key.end() - 134, pair.public_key.end() - 5);
  EXPECT_EQ(modulus.front(), 0U);
  EXPECT_NE(std::search(pair.private_key.begin(), pair.private_key.end(), modulus.begin(), modulus.end()),
            pair.private_key.end());
  EXPECT_GT(pair.private_key.size(), 610U) << "with all of its numbers";
}

KY_CONTRACT(CipherAndKeys);

}  // namespace

}  // namespace contract
