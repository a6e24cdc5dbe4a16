#include "diagnostics/reader/session_key.h"

#include <algorithm>
#include <array>
#include <utility>

#include "diagnostics/log_format.h"
#include "diagnostics/reader/little_endian.h"

namespace diagnostics::reader {

namespace {

constexpr std::size_t max_block_size = 64;

/// The key inside a key blob; empty where the bytes are none.
std::span<const std::uint8_t> key_in(std::span<const std::uint8_t> blob) {
  if (blob.size() < log_format::key_blob_header_size) return {};
  const std::uint32_t size = little_endian(blob.subspan(8));
  if (little_endian(blob) != log_format::key_blob_magic ||
      little_endian(blob.subspan(4)) != log_format::key_blob_version ||
      size != blob.size() - log_format::key_blob_header_size) {
    return {};
  }
  return blob.subspan(log_format::key_blob_header_size);
}

}  // namespace

bool SessionKey::decrypt(std::span<const std::uint8_t> cipher, std::span<std::uint8_t> plain) const {
  std::array<std::uint8_t, max_block_size> iv{};
  std::uint32_t size = 0;
  return ports::status_ok(
             cng_.decrypt(key_, cipher, std::span(iv).first(block_size_), plain, size, ports::cng_padding::none)) &&
         size == cipher.size();
}

KeyOpener::~KeyOpener() {
  cng_.destroy_key(private_key_);
  cng_.close_algorithm(rsa_);
  cng_.close_algorithm(symmetric_);
}

bool KeyOpener::use_algorithm(const std::wstring& name) {
  return ports::status_ok(cng_.open_algorithm(name.c_str(), symmetric_));
}

bool KeyOpener::use_private_key(std::span<const std::uint8_t> blob) {
  return ports::status_ok(cng_.open_algorithm(L"RSA", rsa_)) &&
         ports::status_ok(cng_.import_private_key(rsa_, blob, private_key_)) &&
         ports::status_ok(cng_.block_length(private_key_, wrapped_size_));
}

void KeyOpener::know(std::vector<std::uint8_t> wrapped, std::vector<std::uint8_t> blob) {
  wrapped_size_ = static_cast<std::uint32_t>(wrapped.size());
  known_[std::move(wrapped)] = std::move(blob);
}

/// The plain key blob; empty where the bytes do not open.
std::vector<std::uint8_t> KeyOpener::unwrap(std::span<const std::uint8_t> wrapped) const {
  const auto known = known_.find({wrapped.begin(), wrapped.end()});
  if (known != known_.end()) return known->second;
  if (private_key_ == ports::CngKey::null || wrapped.size() != wrapped_size_) return {};
  std::vector<std::uint8_t> blob(wrapped.size());
  std::vector<std::uint8_t> iv(wrapped_size_);
  std::uint32_t size = 0;
  if (!ports::status_ok(cng_.decrypt(private_key_, wrapped, iv, blob, size, ports::cng_padding::pkcs1))) return {};
  blob.resize(std::min<std::size_t>(size, blob.size()));
  return blob;
}

std::shared_ptr<const SessionKey> KeyOpener::open(std::span<const std::uint8_t> wrapped) const {
  const std::vector<std::uint8_t> blob = unwrap(wrapped);
  const std::span<const std::uint8_t> secret = key_in(blob);
  ports::CngKey key = ports::CngKey::null;
  if (secret.empty() || !ports::status_ok(cng_.generate_key(symmetric_, secret, key))) return nullptr;
  std::uint32_t block_size = 0;
  const bool sized = ports::status_ok(cng_.block_length(key, block_size));
  auto opened = std::make_shared<const SessionKey>(cng_, key, block_size);
  return sized && block_size >= 2 && block_size <= max_block_size ? opened : nullptr;
}

}  // namespace diagnostics::reader
