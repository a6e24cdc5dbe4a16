#include <sys/wait.h>

#include <cstdlib>

#include "tests/scenario/programs.h"

namespace scenario {

std::string desk_path(const std::string& path) {
  return path;
}

std::string command_line(const std::string& program, const std::vector<std::string>& arguments) {
  std::string line = "'" + program + "'";
  for (const std::string& argument : arguments) line += " '" + argument + "'";
  return line;
}

int run_program(const std::string& program, const std::vector<std::string>& arguments) {
  const int status = std::system((command_line(program, arguments) + " >/dev/null").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace scenario
