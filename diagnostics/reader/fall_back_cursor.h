#pragma once

#include <string>
#include <string_view>

#include "diagnostics/reader/cursor.h"
#include "diagnostics/reader/unscrambler.h"
#include "diagnostics/reader/window.h"

namespace diagnostics::reader {

/// Records of the fall-back form: one line each.
class FallBackCursor final : public Cursor {
 public:
  /// Reads `piece` bytes at a time. `unscrambler` outlives the cursor.
  FallBackCursor(const ByteSource& source, const Unscrambler& unscrambler, Extent extent, std::size_t piece,
                 Damage damage);

  [[nodiscard]] bool next(Head& head) override;
  [[nodiscard]] bool begins_thread() const override;
  void message(std::wstring& out) override;
  [[nodiscard]] std::uint64_t position() const override { return at_; }
  void extend(std::uint64_t end, End what) override;

 private:
  /// What lies at the current place: a line's text, and where the next line begins.
  struct Line {
    std::string_view text;  // without the line's end
    std::uint64_t after = 0;
    bool ended = false;
  };

  [[nodiscard]] bool find_line(Line& line);
  [[nodiscard]] bool take(const Line& line, Head& head);
  void skip_long_line();
  void report(ProblemKind kind, std::uint64_t offset, std::uint64_t bytes, std::string text);

  const Unscrambler& unscrambler_;
  const std::string thread_mark_;
  const Damage damage_;
  Extent extent_;
  Window window_;
  std::uint64_t at_;
  std::string_view message_;  // scrambled; in the window
  bool after_damage_ = false;
};

}  // namespace diagnostics::reader
