#pragma once

#include <vector>

#include "diagnostics/reader/cursor.h"
#include "diagnostics/reader/sealed_form.h"
#include "diagnostics/reader/window.h"

namespace diagnostics::reader {

/// Records of the sealed form. They are deciphered many at once, as one chain of blocks, which costs a fraction of
/// deciphering each by itself.
class SealedCursor final : public Cursor {
 public:
  /// Reads and deciphers about `piece` bytes at a time.
  SealedCursor(const ByteSource& source, SealedKey key, Extent extent, std::size_t piece, Damage damage);

  [[nodiscard]] bool next(Head& head) override;
  [[nodiscard]] bool begins_thread() const override;
  void message(std::wstring& out) override;
  [[nodiscard]] std::uint64_t position() const override { return at_; }
  void extend(std::uint64_t end, End what) override;

 private:
  /// A record of the batch, before it has been looked into.
  struct Item {
    std::uint64_t offset = 0;  // of the record
    std::uint64_t after = 0;   // where the next thing begins
    std::size_t cipher_at = 0;
    std::size_t length = 0;
  };

  [[nodiscard]] bool fill();
  [[nodiscard]] bool check(const Item& item, Head& head);
  [[nodiscard]] bool recover();
  [[nodiscard]] bool resynchronise(std::uint64_t from);
  [[nodiscard]] bool take_without_length(std::uint64_t from, std::uint64_t begin);
  [[nodiscard]] bool end_torn(std::uint64_t from);
  void pass_over(std::uint64_t from, std::uint64_t to);
  void report(ProblemKind kind, std::uint64_t offset, std::uint64_t bytes, std::string text);
  void drop_batch();

  [[nodiscard]] std::uint32_t length_at(std::uint64_t offset);
  [[nodiscard]] bool record_fits(std::uint64_t offset);
  [[nodiscard]] bool header_at(std::uint64_t offset);
  [[nodiscard]] bool boundary_at(std::uint64_t offset);
  [[nodiscard]] bool is_framed(std::uint64_t begin);
  [[nodiscard]] bool is_whole(std::uint64_t begin, std::uint64_t end);

  const ByteSource& source_;
  const SealedKey key_;
  const std::uint32_t block_;
  const std::size_t piece_;
  const Damage damage_;
  Extent extent_;
  Window window_;
  StartFinder starts_;
  std::uint64_t at_;

  std::vector<Item> items_;
  std::size_t next_item_ = 0;
  std::vector<std::uint8_t> cipher_;
  std::vector<std::uint8_t> plain_;
  std::span<const std::uint8_t> text_;  // of the current record, behind its stamp, without the line's end
  bool after_damage_ = false;
};

}  // namespace diagnostics::reader
