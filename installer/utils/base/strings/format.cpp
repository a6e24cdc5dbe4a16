#include "installer/utils/base/strings/format.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <type_traits>

namespace base::strings {

namespace {

struct Conversion {
  bool left = false, plus = false, blank = false, alternate = false, zero = false;
  int width = 0;
  int precision = -1;
  enum class Size { none, narrow, wide, bits64 } size = Size::none;
};

/// One pass over a format. `C` is the family's own character type.
template <class C>
class Formatter {
 public:
  Formatter(const C* format, std::va_list arguments) : at_(format) { va_copy(arguments_, arguments); }
  ~Formatter() { va_end(arguments_); }
  Formatter(const Formatter&) = delete;
  Formatter& operator=(const Formatter&) = delete;

  std::basic_string<C> run() {
    for (;;) {
      const C* const begin = at_;
      while (*at_ != C{} && *at_ != C('%')) ++at_;
      out_.append(begin, at_);
      if (*at_ == C{}) return std::move(out_);
      ++at_;
      convert();
    }
  }

 private:
  void convert() {
    Conversion how;
    read_flags(how);
    how.width = read_number(0);
    if (*at_ == C('.')) {
      ++at_;
      how.precision = read_number(0);
    }
    read_size(how);
    if (*at_ == C{}) return;  // a lone "%" at the end prints nothing
    put(*at_++, how);
  }

  void read_flags(Conversion& how) {
    for (;; ++at_) {
      switch (static_cast<wchar_t>(*at_)) {
        case L'-':
          how.left = true;
          break;
        case L'+':
          how.plus = true;
          break;
        case L' ':
          how.blank = true;
          break;
        case L'#':
          how.alternate = true;
          break;
        case L'0':
          how.zero = true;
          break;
        default:
          return;
      }
    }
  }

  int read_number(int value) {
    if (*at_ == C('*')) {
      ++at_;
      return va_arg(arguments_, int);
    }
    constexpr int enough = 100000;
    for (; *at_ >= C('0') && *at_ <= C('9'); ++at_)
      value = std::min(enough, value * 10 + static_cast<int>(*at_ - C('0')));
    return value;
  }

  void read_size(Conversion& how) {
    if (*at_ == C('I') && at_[1] == C('6') && at_[2] == C('4')) {
      how.size = Conversion::Size::bits64;
      at_ += 3;
    } else if (*at_ == C('l')) {
      how.size = Conversion::Size::wide;
      ++at_;
    } else if (*at_ == C('h')) {
      how.size = Conversion::Size::narrow;
      ++at_;
    }
  }

  void put(C conversion, const Conversion& how) {
    switch (static_cast<wchar_t>(conversion)) {
      case L'd':
      case L'i':
        put_signed(how);
        break;
      case L'u':
        put_unsigned(how, 10, "0123456789");
        break;
      case L'x':
        put_unsigned(how, 16, "0123456789abcdef");
        break;
      case L'X':
        put_unsigned(how, 16, "0123456789ABCDEF");
        break;
      case L'c':
        pad(std::basic_string<C>(1, static_cast<C>(va_arg(arguments_, int))), how);
        break;
      case L's':
        put_string(how, sizeof(C) != 1);
        break;
      case L'S':
        put_string(how, sizeof(C) == 1);
        break;
      default:
        out_.push_back(conversion);  // "%%", and an unknown conversion prints itself
    }
  }

  void put_signed(const Conversion& how) {
    const std::int64_t value =
        how.size == Conversion::Size::bits64 ? va_arg(arguments_, std::int64_t) : va_arg(arguments_, std::int32_t);
    const std::uint64_t magnitude =
        value < 0 ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value);
    put_digits(how, magnitude, 10, "0123456789", value < 0 ? "-" : how.plus ? "+" : how.blank ? " " : "");
  }

  void put_unsigned(const Conversion& how, std::uint64_t radix, const char* digits) {
    const std::uint64_t value =
        how.size == Conversion::Size::bits64 ? va_arg(arguments_, std::uint64_t) : va_arg(arguments_, std::uint32_t);
    const bool marked = how.alternate && radix == 16 && value != 0;
    put_digits(how, value, radix, digits, !marked ? "" : digits[10] == 'a' ? "0x" : "0X");
  }

  void put_digits(const Conversion& how, std::uint64_t value, std::uint64_t radix, const char* digits,
                  std::string_view sign) {
    std::basic_string<C> text;
    for (; value != 0; value /= radix) text.push_back(static_cast<C>(digits[value % radix]));
    std::size_t wanted = how.precision < 0 ? 1 : static_cast<std::size_t>(how.precision);
    if (how.zero && !how.left && how.precision < 0) {
      const auto width = static_cast<std::size_t>(std::max(0, how.width));
      wanted = std::max(wanted, width > sign.size() ? width - sign.size() : 0);
    }
    if (text.size() < wanted) text.append(wanted - text.size(), C('0'));
    std::reverse(text.begin(), text.end());
    pad(std::basic_string<C>(sign.begin(), sign.end()).append(text), how);
  }

  void put_string(const Conversion& how, bool wide) {
    if (how.size == Conversion::Size::wide) wide = true;
    if (how.size == Conversion::Size::narrow) wide = false;
    const auto limit = how.precision < 0 ? std::size_t(-1) : static_cast<std::size_t>(how.precision);
    if (wide) {
      pad(taken(va_arg(arguments_, const wchar_t*), L"(null)", limit), how);
    } else {
      pad(taken(va_arg(arguments_, const char*), "(null)", limit), how);
    }
  }

  template <class Source>
  static auto taken(const Source* text, const Source* null_text, std::size_t limit) {
    if (text == nullptr) text = null_text;
    if constexpr (std::is_same_v<Source, C>) {
      std::size_t length = 0;
      while (length < limit && text[length] != C{}) ++length;
      return std::basic_string_view<C>(text, length);
    } else {
      std::basic_string<C> out;
      for (; out.size() < limit && *text != Source{}; ++text) {
        const auto unit = static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<Source>>(*text));
        if (sizeof(C) == 1 && unit > 0xFF) break;
        out.push_back(static_cast<C>(unit));
      }
      return out;
    }
  }

  void pad(std::basic_string_view<C> text, const Conversion& how) {
    const auto width = static_cast<std::size_t>(std::max(0, how.width));
    const std::size_t missing = width > text.size() ? width - text.size() : 0;
    if (!how.left) out_.append(missing, C(' '));
    out_.append(text);
    if (how.left) out_.append(missing, C(' '));
  }

  const C* at_;
  std::va_list arguments_;
  std::basic_string<C> out_;
};

}  // namespace

std::wstring format_v(const wchar_t* format, std::va_list arguments) {
  return Formatter<wchar_t>(format, arguments).run();
}

std::string format_v(const char* format, std::va_list arguments) {
  return Formatter<char>(format, arguments).run();
}

namespace detail {

std::wstring format_arguments(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::wstring text = format_v(format, arguments);
  va_end(arguments);
  return text;
}

std::string format_arguments(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = format_v(format, arguments);
  va_end(arguments);
  return text;
}

}  // namespace detail

}  // namespace base::strings
