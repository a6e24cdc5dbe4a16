#include <algorithm>

#include "installer/utils/base/strings/utf8.h"
#include "platform/ports/build.h"
#include "platform/ports/processes.h"
#include "platform/ports/threads.h"
#include "tests/scenario/programs.h"

namespace scenario {

// Wine shows the desk's root as drive Z.
std::string desk_path(const std::string& path) {
  std::string out = "Z:" + path;
  std::replace(out.begin(), out.end(), '/', '\\');
  return out;
}

std::string command_line(const std::string& program, const std::vector<std::string>& arguments) {
  std::string line = "\"" + program + "\"";
  for (const std::string& argument : arguments) line += " \"" + argument + "\"";
  return line;
}

int run_program(const std::string& program, const std::vector<std::string>& arguments) {
  const ports::System& world = *ports::real_system(ports::Module::null);
  ports::CreatedProcess created;
  if (!world.processes.create(base::strings::to_wide(command_line(program, arguments)).c_str(), nullptr,
                              ports::creation_flag::no_window, created)) {
    return -1;
  }
  constexpr std::uint32_t limit = 100'000;
  std::uint32_t code = 0;
  const bool ended = world.waits.wait({&created.process, 1}, false, limit) == ports::wait_result::object_0 &&
                     world.processes.exit_code(created.process, code);
  if (!ended) world.processes.terminate(created.process, 1);
  world.waits.close(created.thread);
  world.waits.close(created.process);
  return ended ? static_cast<int>(code) : -1;
}

}  // namespace scenario
