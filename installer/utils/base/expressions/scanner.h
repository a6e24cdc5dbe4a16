#pragma once

#include <cstddef>
#include <cstdint>

namespace base::expressions {

enum class TokenType : std::int32_t {
  none = -1,
  delimiter = 0,  // an empty one is the end of the text
  number = 1,
  variable = 2,
  function = 3,  // a name before an opening bracket
  unknown = 4,   // the rest of the text, from a character that begins no token
};

/// Where the reading of an expression stands, and the token read last. Letters are ASCII.
struct Scanner {
  static constexpr std::size_t capacity = 128;  // of a token, with its terminator

  explicit Scanner(const char* text) : pos(text) {}

  void skip_blanks();

  /// Reads the token at `pos`, behind blanks, and leaves `pos` behind it. False where the token does not fit; `token`
  /// then holds none of it.
  [[nodiscard]] bool read();

  const char* pos;  // into a terminated text that outlives the scanner
  char token[capacity] = {};
  TokenType tokenType = TokenType::none;
};

}  // namespace base::expressions
