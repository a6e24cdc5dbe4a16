#pragma once

#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"

namespace bench {

/// A machine, by default a bare one, with a started session: what loading and expanding need.
struct DeskWorld {
  explicit DeskWorld(machine::State state = machine::bare_state())
      // Rounds count as steps of one run here.
      : world(std::move(state), machine::Options{.max_steps = ~std::uint64_t{0}}) {
    if (!session.start(host::built_in_script_key()).empty()) std::abort();
  }
  machine::Machine world;
  std::unique_ptr<ports::Engines> engines = ports::make_engines(world.errors());
  ports::System system = world.system(*engines);
  host::TableFactories library{ky::library::factories()};
  host::Session session{system, library};
};

inline std::string read_source(const std::string& path) {
  std::ifstream in(std::string(KY_SOURCE_FOLDER) + "/" + path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace bench
