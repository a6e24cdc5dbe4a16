#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace desk {

/// What became of a program.
struct ProgramRun {
  bool found = true;    // false: no folder of the search path holds it
  std::string failure;  // empty where it ran and ended by itself; otherwise one line: the program, a colon, the reason
  int exit_code = 0;
  std::string output;  // what it wrote to its standard output
  std::string errors;  // and to its error stream
};

/// Runs another program of the desk and waits for its end; one that goes on after `limit` is ended. `program` is a name
/// without folder and suffix, looked for in the folders of PATH alone. It gets `arguments` as they stand, since no
/// shell is between, and `input` on its standard input. Texts are UTF-8; input, output and errors are bytes. Defined in
/// the build's own folder.
[[nodiscard]] ProgramRun run_program(const std::string& program, const std::vector<std::string>& arguments,
                                     std::string_view input, std::chrono::milliseconds limit);

}  // namespace desk
