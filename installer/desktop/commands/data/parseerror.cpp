#include "installer/desktop/commands/data/parseerror.h"

namespace ky {

CParseError::CParseError(std::string_view message) {
  msg[message.copy(msg, capacity - 1)] = '\0';
}

}  // namespace ky
