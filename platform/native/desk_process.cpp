#include "platform/desk/process.h"

#include <unistd.h>

bool desk::restrict_library_search() {
  return true;
}

std::vector<std::string> desk::arguments(int count, char** values) {
  return count > 1 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

bool desk::is_terminal() {
  return isatty(STDERR_FILENO) == 1;
}
