#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "diagnostics/reader/byte_source.h"
#include "diagnostics/reader/session_key.h"

namespace diagnostics::reader {

/// What opens the records of a sealed file.
struct SealedKey {
  std::shared_ptr<const SessionKey> key;
  std::vector<std::uint8_t> wrapped;  // as it stands in the files' key headers
};

/// True for a length that a record's cipher text can have.
[[nodiscard]] bool is_record_length(std::uint32_t length, std::uint32_t block_size);

/// How many bytes of plain text the first blocks of a record must hold to be known by their time stamp.
inline constexpr std::size_t stamp_size = 30;
[[nodiscard]] std::size_t stamp_cipher_size(std::uint32_t block_size);

/// Finds records where length fields cannot be trusted: the cipher text of each begins with blocks that decipher, all
/// by themselves, to a time stamp.
class StartFinder {
 public:
  StartFinder(const ByteSource& source, const SessionKey& key) : source_(source), key_(key) {}

  /// The first place in [from, end) at which a record's cipher text begins.
  [[nodiscard]] std::optional<std::uint64_t> find(std::uint64_t from, std::uint64_t end) const;

  /// True where one begins right at `place`.
  [[nodiscard]] bool begins_at(std::uint64_t place, std::uint64_t end) const;

 private:
  [[nodiscard]] std::optional<std::size_t> find_in(std::span<const std::uint8_t> bytes,
                                                   std::vector<std::uint8_t>& plain) const;

  const ByteSource& source_;
  const SessionKey& key_;
};

}  // namespace diagnostics::reader
