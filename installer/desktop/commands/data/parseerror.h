#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "installer/utils/base/expressions/parse_errors.h"
#include "installer/utils/base/strings/format.h"

namespace ky {

/// Why an expression does not parse; thrown by value. It takes a place and an error's id and deliberately keeps
/// neither: the three numbers stay 0, and log lines end in a constant place that readers of logs know.
class CParseError {
 public:
  template <class... Arguments>
  CParseError(std::int32_t /*row*/, std::int32_t /*column*/, std::int32_t error, Arguments... arguments)
      : CParseError(base::strings::format(base::expressions::message_format(error), arguments...)) {}

  /// Cut to 254 characters.
  [[nodiscard]] const char* Message() const { return msg; }

  std::int32_t row = 0;
  std::int32_t col = 0;
  std::int32_t id = 0;

 private:
  static constexpr std::size_t capacity = 255;

  explicit CParseError(std::string_view message);

  char msg[capacity];
};

}  // namespace ky
