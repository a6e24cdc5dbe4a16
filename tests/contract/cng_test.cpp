#include "platform/ports/cng.h"

#include <algorithm>
#include <array>
#include <thread>

#include "diagnostics/rsa_blob.h"
#include "platform/ports/script_cipher.h"
#include "tests/contract/world.h"
#include "tests/support/development_key.h"

namespace contract {

namespace {

using Bytes = std::vector<std::uint8_t>;
using ports::CngAlgorithm;
using ports::CngKey;
using ports::Status;
namespace padding = ports::cng_padding;
namespace status = ports::status;

Bytes counted(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i);
  return bytes;
}

class Cng : public Contract {
 protected:
  ports::Cng& cng() { return system().cng; }

  CngAlgorithm open(const wchar_t* identifier) {
    CngAlgorithm algorithm = CngAlgorithm::null;
    EXPECT_TRUE(ports::status_ok(cng().open_algorithm(identifier, algorithm)));
    return algorithm;
  }

  CngKey key(const wchar_t* identifier, const Bytes& secret) {
    const CngAlgorithm algorithm = open(identifier);
    CngKey made = CngKey::null;
    EXPECT_TRUE(ports::status_ok(cng().generate_key(algorithm, secret, made)));
    cng().close_algorithm(algorithm);
    return made;
  }

  std::uint32_t block_length(CngKey of) {
    std::uint32_t length = 0;
    EXPECT_TRUE(ports::status_ok(cng().block_length(of, length)));
    return length;
  }

  /// Empty on failure.
  Bytes turn(bool encrypt, CngKey with, const Bytes& from, std::uint32_t how) {
    Bytes iv(block_length(with));
    std::uint32_t size = 0;
    const auto call = [&](std::span<std::uint8_t> into) {
      return ports::status_ok(encrypt ? cng().encrypt(with, from, iv, into, size, how)
                                      : cng().decrypt(with, from, iv, into, size, how));
    };
    if (!call({})) return {};
    Bytes into(size);
    return call(into) ? Bytes(into.begin(), into.begin() + size) : Bytes();
  }
  Bytes encrypted(CngKey with, const Bytes& plain, std::uint32_t how = padding::block) {
    return turn(true, with, plain, how);
  }
  Bytes decrypted(CngKey with, const Bytes& cipher, std::uint32_t how = padding::block) {
    return turn(false, with, cipher, how);
  }
};

TEST_P(Cng, BlockCiphersChainFromTheIvAndPadEveryMessage) {
  struct Row {
    const wchar_t* identifier;
    std::size_t key_size;
    std::uint32_t block;
  };
  for (const Row& row : {Row{L"AES", 16, 16}, Row{L"AES", 24, 16}, Row{L"AES", 32, 16}, Row{L"3DES", 24, 8}}) {
    const CngKey made = key(row.identifier, counted(row.key_size));
    EXPECT_EQ(block_length(made), row.block);
    for (const std::size_t size : {0U, 1U, 15U, 16U, 37U, 8000U}) {
      const Bytes plain(size, 'x');
      const Bytes cipher = encrypted(made, plain);
      EXPECT_EQ(cipher.size(), (size / row.block + 1) * row.block);
      EXPECT_EQ(encrypted(made, plain), cipher) << "each message starts anew";
      EXPECT_EQ(decrypted(made, cipher), plain);
      const Bytes bare = decrypted(made, cipher, padding::none);
      EXPECT_EQ(bare.size(), cipher.size());
      EXPECT_EQ(bare.empty() ? 0U : bare.back(), cipher.size() - size) << "the padding tells its length";
    }
    cng().destroy_key(made);
  }
}

TEST_P(Cng, AnswersAreThoseOfTheStandardCiphers) {
  const Bytes nop = {0xAA, 0x7E, 0x8C, 0x9C, 0x44, 0xD2, 0x3A, 0x76, 0x0F, 0x32, 0x0B, 0x9F, 0x8E, 0x18, 0xB5, 0xB4};
  const CngKey aes = key(L"AES", counted(32));
  EXPECT_EQ(encrypted(aes, {'N', 'o', 'p'}), nop);
  std::uint32_t size = 0;
  EXPECT_TRUE(ports::status_ok(cng().export_key(aes, {}, size)));
  ASSERT_EQ(size, 44U);
  Bytes exported(size);
  EXPECT_TRUE(ports::status_ok(cng().export_key(aes, exported, size)));
  Bytes expected = {'K', 'D', 'B', 'M', 1, 0, 0, 0, 32, 0, 0, 0};
  const Bytes secret = counted(32);
  expected.insert(expected.end(), secret.begin(), secret.end());
  EXPECT_EQ(exported, expected);
  cng().destroy_key(aes);
  const CngKey longer = key(L"AES", counted(40));
  EXPECT_EQ(encrypted(longer, {'N', 'o', 'p'}), nop) << "a key's beginning is enough";
  cng().destroy_key(longer);
}

TEST_P(Cng, WhatCannotBeIsRefused) {
  CngAlgorithm unknown = CngAlgorithm::null;
  EXPECT_LT(cng().open_algorithm(L"NOSUCH", unknown), 0);
  EXPECT_LT(cng().open_algorithm(L"", unknown), 0);
  const CngAlgorithm aes = open(L"AES");
  CngKey none = CngKey::null;
  for (const std::size_t size : {0U, 5U, 15U, 17U}) EXPECT_LT(cng().generate_key(aes, counted(size), none), 0) << size;
  cng().close_algorithm(aes);
  EXPECT_EQ(none, CngKey::null);

  const CngKey made = key(L"AES", counted(16));
  Bytes broken = encrypted(made, {'a'});
  broken[15] = static_cast<std::uint8_t>(broken[15] ^ 0x5A);
  for (const Bytes& cipher : {broken, Bytes(15, 1), Bytes(17, 1)}) EXPECT_TRUE(decrypted(made, cipher).empty());
  Bytes iv(16), into(15);
  std::uint32_t size = 0;
  EXPECT_EQ(cng().encrypt(made, into, iv, into, size, padding::block), status::buffer_too_small);
  EXPECT_EQ(size, 16U);
  cng().destroy_key(made);
}

TEST_P(Cng, AKeyIsWrappedForItsHolderAlone) {
  const CngAlgorithm rsa = open(L"RSA");
  const Bytes open_blob = support::log_public_key();
  const Bytes secret_blob = support::log_private_key();
  CngKey open_key = CngKey::null, secret_key = CngKey::null, none = CngKey::null;
  ASSERT_EQ(cng().import_public_key(rsa, open_blob, open_key), 0);
  ASSERT_EQ(cng().import_private_key(rsa, secret_blob, secret_key), 0);
  EXPECT_EQ(block_length(open_key), 128U);
  const Bytes secret = counted(44);
  const Bytes wrapped = encrypted(open_key, secret, padding::pkcs1);
  EXPECT_EQ(wrapped.size(), 128U);
  EXPECT_NE(encrypted(open_key, secret, padding::pkcs1), wrapped) << "the padding is random";
  EXPECT_EQ(decrypted(secret_key, wrapped, padding::pkcs1), secret);

  ports::RsaPair other;
  ASSERT_TRUE(system().key_maker.rsa_pair(1024, other));
  CngKey other_key = CngKey::null;
  ASSERT_EQ(cng().import_private_key(rsa, diagnostics::private_key_blob(other.private_key), other_key), 0);
  EXPECT_NE(decrypted(other_key, wrapped, padding::pkcs1), secret);
  EXPECT_TRUE(encrypted(open_key, counted(118), padding::pkcs1).empty()) << "longer than the padding allows";
  for (const Bytes& blob : {Bytes(), counted(155), Bytes(open_blob.begin(), open_blob.end() - 1)}) {
    EXPECT_LT(cng().import_public_key(rsa, blob, none), 0);
    EXPECT_LT(cng().import_private_key(rsa, blob, none), 0);
  }
  for (const CngKey made : {open_key, secret_key, other_key}) cng().destroy_key(made);
  cng().close_algorithm(rsa);
}

TEST_P(Cng, RandomBytesDiffer) {
  const CngAlgorithm rng = open(L"RNG");
  std::array<std::uint8_t, 32> first{}, second{};
  EXPECT_EQ(cng().random(rng, first), 0);
  EXPECT_EQ(cng().random(rng, second), 0);
  EXPECT_NE(first, second);
  cng().close_algorithm(rng);
}

TEST_P(Cng, OneKeyServesManyThreads) {
  const CngKey made = key(L"AES", counted(32));
  const Bytes plain = counted(200);
  const Bytes cipher = encrypted(made, plain);
  std::vector<std::thread> threads;
  std::array<int, 8> wrong{};
  for (int& mistakes : wrong) {
    threads.emplace_back([&] {
      Bytes iv(16), into(208);
      std::uint32_t size = 0;
      for (int i = 0; i < 300; ++i) {
        std::fill(iv.begin(), iv.end(), std::uint8_t{0});
        mistakes += cng().encrypt(made, plain, iv, into, size, padding::block) != 0 || into != cipher;
        std::fill(iv.begin(), iv.end(), std::uint8_t{0});
        mistakes += cng().decrypt(made, cipher, iv, into, size, padding::block) != 0 || size != plain.size() ||
                    !std::equal(plain.begin(), plain.end(), into.begin());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, (std::array<int, 8>{}));
  cng().destroy_key(made);
}

TEST_P(Cng, StatusesHaveTheirErrorCodes) {
  system().errors.set_last(7);
  for (const auto& [from, to] : {std::pair{status::not_found, ports::code::not_found},
                                 {status::invalid_parameter, ports::code::invalid_parameter},
                                 {status::buffer_too_small, ports::code::insufficient_buffer},
                                 {status::not_implemented, ports::code::invalid_function},
                                 {status::invalid_handle, ports::code::invalid_handle},
                                 {status::no_memory, ports::code::not_enough_memory},
                                 {status::unsuccessful, ports::code::gen_failure},
                                 {status::data_error, ports::ErrorCode{23}},
                                 {status::not_supported, ports::ErrorCode{50}},
                                 {status::invalid_buffer_size, ports::ErrorCode{1784}},
                                 {Status{0x103}, ports::ErrorCode{996}},
                                 {static_cast<Status>(0xCFFF1234), ports::ErrorCode{317}}}) {
    EXPECT_EQ(cng().error_of(from), to) << from;
  }
  EXPECT_EQ(last_error(), 7U);
}

KY_CONTRACT(Cng);

}  // namespace

}  // namespace contract
