#include "installer/utils/base/expressions/parse_errors.h"

#include "installer/utils/base/strings/format.h"

namespace base::expressions {

const char* message_format(std::int32_t id) {
  switch (id) {
    case 1:
      return "Syntax error in part \"%s\"";
    case 2:
      return "Syntax error";
    case 3:
      return "Parenthesis ) missing";
    case 4:
      return "Empty expression";
    case 5:
      return "Unexpected part \"%s\"";
    case 6:
      return "Unexpected end of expression";
    case 7:
      return "Value expected";
    case 101:
      return "Unknown operator %s";
    case 102:
      return "Unknown function %s";
    case 103:
      return "Unknown variable %s";
    case 200:
      return "Too long expression, maximum number of characters exceeded";
    case 300:
      return "Defining variable failed";
    case 400:
      return "Integer value expected in function %s";
    default:
      return "Unknown error";
  }
}

std::string message_of(ErrorId id, std::string_view argument) {
  return strings::format(message_format(static_cast<std::int32_t>(id)), std::string(argument).c_str());
}

}  // namespace base::expressions
