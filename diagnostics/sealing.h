#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "platform/ports/cng.h"
#include "platform/ports/system.h"

/// Encryption of the log. Failures are raised as `std::system_error` in the Windows category.
namespace diagnostics {

/// A handle of the Cng port, given back at its end.
template <class Handle, void (ports::Cng::*give_back)(Handle)>
class CngOwner {
 public:
  CngOwner() = default;
  explicit CngOwner(Handle handle) : handle_(handle) {}
  CngOwner(CngOwner&& other) noexcept : handle_(std::exchange(other.handle_, Handle::null)) {}
  CngOwner& operator=(CngOwner&& other) noexcept {
    reset(std::exchange(other.handle_, Handle::null));
    return *this;
  }
  ~CngOwner() { reset(); }

  [[nodiscard]] Handle get() const { return handle_; }
  void reset(Handle handle = Handle::null) {
    const Handle former = std::exchange(handle_, handle);
    if (former != Handle::null) (ports::system().cng.*give_back)(former);
  }

 private:
  Handle handle_ = Handle::null;
};
using CngAlgorithmOwner = CngOwner<ports::CngAlgorithm, &ports::Cng::close_algorithm>;
using CngKeyOwner = CngOwner<ports::CngKey, &ports::Cng::destroy_key>;

[[nodiscard]] CngAlgorithmOwner open_algorithm(const wchar_t* identifier);
[[nodiscard]] std::vector<std::uint8_t> random_bytes(std::size_t count);
[[nodiscard]] CngKeyOwner generate_key(ports::CngAlgorithm algorithm, std::span<const std::uint8_t> secret);
[[nodiscard]] std::uint32_t block_length(ports::CngKey key);

/// The key as a blob, encrypted with the built-in public key, so that the holder of the private one alone gets at it.
[[nodiscard]] std::vector<std::uint8_t> wrap_session_key(ports::CngKey key);

/// How many bytes `plain` becomes. An empty `iv` raises `std::out_of_range`; fewer bytes than there are in `plain`
/// raise 1359.
[[nodiscard]] std::uint32_t encrypted_size(ports::CngKey key, std::span<const std::uint8_t> plain,
                                           std::vector<std::uint8_t>& iv, std::uint32_t padding);
/// Encrypts into `into`, which has that size, and gives the number of bytes.
[[nodiscard]] std::uint32_t encrypt_into(ports::CngKey key, std::span<const std::uint8_t> plain,
                                         std::vector<std::uint8_t>& iv, std::uint32_t padding,
                                         std::span<std::uint8_t> into);
/// Both in one.
[[nodiscard]] std::vector<std::uint8_t> encrypt_buffer(ports::CngKey key, std::span<const std::uint8_t> plain,
                                                       std::vector<std::uint8_t>& iv, std::uint32_t padding);

}  // namespace diagnostics
