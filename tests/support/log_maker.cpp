#include "tests/support/log_maker.h"

#include <stdexcept>

#include "tests/support/development_key.h"

namespace support {

namespace {

void require(ports::Status status) {
  if (!ports::status_ok(status)) throw std::runtime_error("a log cannot be made");
}

std::string with_length(std::vector<std::uint8_t> bytes) {
  std::string text;
  for (std::size_t i = 0; i < 4; ++i) text.push_back(static_cast<char>(bytes.size() >> (8 * i) & 0xFF));
  return text.append(bytes.begin(), bytes.end());
}

}  // namespace

LogMaker::LogMaker(std::wstring algorithm, std::size_t key_size) : keys_(desk_.engines().cng()) {
  require(cng().open_algorithm(algorithm.c_str(), algorithm_));
  const std::vector<std::uint8_t> secret(key_size, key_byte);
  require(cng().generate_key(algorithm_, secret, key_));
  require(cng().block_length(key_, block_));
  std::uint32_t size = 0;
  require(cng().export_key(key_, {}, size));
  std::vector<std::uint8_t> blob(size);
  require(cng().export_key(key_, blob, size));

  ports::CngAlgorithm rsa{};
  ports::CngKey public_key{};
  require(cng().open_algorithm(L"RSA", rsa));
  require(cng().import_public_key(rsa, log_public_key(), public_key));
  std::vector<std::uint8_t> wrapped(128);
  std::vector<std::uint8_t> iv(128);
  require(cng().encrypt(public_key, blob, iv, wrapped, size, ports::cng_padding::pkcs1));
  cng().destroy_key(public_key);
  cng().close_algorithm(rsa);
  header_ = with_length(wrapped);
  if (!keys_.use_algorithm(algorithm) || !keys_.use_private_key(log_private_key()))
    throw std::runtime_error("the development key is refused");
}

LogMaker::~LogMaker() {
  cng().destroy_key(key_);
  cng().close_algorithm(algorithm_);
}

std::string LogMaker::record(std::string_view time, std::wstring_view message) {
  std::vector<std::uint8_t> plain;
  const auto add = [&plain](wchar_t unit) {
    plain.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    plain.push_back(static_cast<std::uint8_t>(unit >> 8 & 0xFF));
  };
  add(L'[');
  for (const char c : time) add(static_cast<wchar_t>(c));
  for (const wchar_t unit : L"] " + std::wstring(message) + L"\n") add(unit);
  std::vector<std::uint8_t> cipher(plain.size() + block_);
  std::vector<std::uint8_t> iv(block_);
  std::uint32_t size = 0;
  require(cng().encrypt(key_, plain, iv, cipher, size, ports::cng_padding::block));
  cipher.resize(size);
  return with_length(cipher);
}

std::string LogMaker::first_record(std::string_view time, std::uint32_t thread) {
  return record(time, L"=========== Started logging for thread " + std::to_wstring(thread) +
                          L" (test) on 14.11.2025 ===========");
}

}  // namespace support
