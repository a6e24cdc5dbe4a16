#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace diagnostics::reader {

/// Turns scrambled messages of the fall-back form back.
///
/// Two characters cannot come back: one whose scrambled form has the byte 0x0A was kept as it was by the writer, and is
/// taken so; and one whose scrambled form is an unpaired surrogate stands in the file as U+FFFD, and is given so. How
/// many key bytes the latter spent is not known either: two, or one where its low byte was zero. Both ways are
/// followed, and the one that gives more readable text behind it is taken; two where neither does.
class Unscrambler {
 public:
  /// `key` is not empty.
  explicit Unscrambler(std::string_view key) : key_(key.begin(), key.end()) {}

  /// The message that `utf8`, scrambled, stands for. Ill-formed bytes are treated like lost characters.
  void turn_back(std::string_view utf8, std::wstring& out) const;

  /// The scrambled form of ASCII text that is a message's beginning.
  [[nodiscard]] std::string scramble(std::string_view ascii) const;

 private:
  struct Run;
  struct Way;
  using Ways = std::vector<std::optional<Way>>;  // by key index

  /// Walks [begin, end) of `units` from key index `index`, which it moves on.
  void walk(std::wstring& units, std::size_t begin, std::size_t end, std::size_t& index) const;
  void walk_with_losses(std::wstring& units, bool ill_formed) const;
  [[nodiscard]] static std::vector<Run> runs_of(const std::wstring& units);
  [[nodiscard]] Ways follow(const std::wstring& units, const Run& run, const Run& next, const Ways& ways,
                            bool ill_formed) const;
  [[nodiscard]] std::wstring walked(const std::wstring& units, const Run& run, std::size_t index) const;

  const std::vector<std::uint8_t> key_;
};

/// How much a text looks like one that somebody wrote; more is better, and 0 says nothing.
[[nodiscard]] int readability(std::wstring_view text);

}  // namespace diagnostics::reader
