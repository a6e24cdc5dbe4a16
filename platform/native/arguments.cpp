#include "platform/desk/arguments.h"

std::vector<std::string> desk::arguments(int count, char** values) {
  return count > 1 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}
