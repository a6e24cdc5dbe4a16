#pragma once

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"

namespace bench {

/// A bare machine with a started session: what loading and expanding need.
struct DeskWorld {
  DeskWorld() {
    if (!session.start(host::built_in_script_key()).empty()) std::abort();
  }
  // Rounds count as steps of one run here.
  machine::Machine world{machine::Options{.max_steps = ~std::uint64_t{0}}};
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
