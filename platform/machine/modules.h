#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "platform/machine/state.h"
#include "platform/ports/modules.h"

namespace ports {
class Errors;
}

namespace machine {

/// The machine's loaded modules: the program, the library that holds the commands, and what is loaded by path. The two
/// are known from the start; their procedures are those that were added.
class Modules final : public ports::Modules {
 public:
  static constexpr ports::Module program{0x140000000};
  static constexpr ports::Module library{0x180000000};

  Modules(World& world, ports::Errors& errors) : world_(world), errors_(errors) {}

  [[nodiscard]] ports::Module main() override { return program; }
  [[nodiscard]] ports::Procedure procedure(ports::Module module, const char* name) override;
  [[nodiscard]] ports::Module load(const wchar_t* path, std::uint32_t flags) override;
  bool free(ports::Module module) override;
  [[nodiscard]] std::wstring file_name(ports::Module module) override;

  void add_procedure(ports::Module module, std::string name, ports::Procedure procedure);

 private:
  struct Loaded {
    NodeId node = 0;
    std::wstring path;
    std::uint32_t uses = 0;
  };

  World& world_;
  ports::Errors& errors_;
  std::map<ports::Module, Loaded> loaded_ KY_GUARDED_BY(world_.mutex);
  std::map<std::pair<ports::Module, std::string>, ports::Procedure> procedures_ KY_GUARDED_BY(world_.mutex);
};

}  // namespace machine
