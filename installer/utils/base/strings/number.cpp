#include "installer/utils/base/strings/number.h"

#include <algorithm>
#include <cwchar>
#include <limits>

namespace base::strings {

namespace {

std::int32_t parse(const wchar_t* text, int radix) {
  const long long value = std::wcstoll(text, nullptr, radix);
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<long long>(value, Limits::min(), Limits::max()));
}

}  // namespace

std::int32_t to_integer(const wchar_t* text) {
  return parse(text, 0);
}

std::int32_t to_decimal(const wchar_t* text) {
  return parse(text, 10);
}

}  // namespace base::strings
