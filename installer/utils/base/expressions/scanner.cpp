#include "installer/utils/base/expressions/scanner.h"

#include <array>
#include <string_view>

namespace base::expressions {

namespace {

/// Sets of characters, as bits.
enum Set : std::uint8_t { blank = 1, sign = 2, numeral = 4, digit = 8, letter = 16, single = 32 };

constexpr std::array<std::uint8_t, 256> make_sets() {
  std::array<std::uint8_t, 256> sets{};
  const auto add = [&sets](std::string_view characters, std::uint8_t set) {
    for (const char c : characters) sets[static_cast<unsigned char>(c)] |= set;
  };
  add(" \t", blank);
  add("&|<>=+/*%^!", sign);
  add("-()", single);
  add("0123456789.", numeral);
  add("0123456789", digit);
  add("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_", letter);
  return sets;
}
constexpr std::array<std::uint8_t, 256> sets = make_sets();

bool is(char c, int set) {
  return (sets[static_cast<unsigned char>(c)] & set) != 0;
}

const char* behind(const char* from, int set) {
  while (is(*from, set)) ++from;
  return from;
}

const char* behind_number(const char* from) {
  from = behind(from, numeral);
  if (*from != 'E' && *from != 'e') return from;
  ++from;
  if (*from == '+' || *from == '-') ++from;
  return behind(from, digit);
}

const char* behind_all(const char* from) {
  while (*from != '\0') ++from;
  return from;
}

}  // namespace

void Scanner::skip_blanks() {
  pos = behind(pos, blank);
}

bool Scanner::read() {
  skip_blanks();
  const char* end = pos;
  if (is(*pos, numeral)) {
    tokenType = TokenType::number;
    end = behind_number(pos);
  } else if (is(*pos, sign)) {
    tokenType = TokenType::delimiter;
    end = behind(pos, sign);
  } else if (is(*pos, single)) {
    tokenType = TokenType::delimiter;
    ++end;
  } else if (is(*pos, letter)) {
    end = behind(pos, letter | digit);
    tokenType = *behind(end, blank) == '(' ? TokenType::function : TokenType::variable;
  } else if (*pos == '\0') {
    tokenType = TokenType::delimiter;
  } else {
    tokenType = TokenType::unknown;
    end = behind_all(pos);
  }
  const auto length = static_cast<std::size_t>(end - pos);
  const bool fits = length < capacity;
  token[fits ? std::string_view(pos, length).copy(token, length) : 0] = '\0';
  pos = end;
  return fits;
}

}  // namespace base::expressions
