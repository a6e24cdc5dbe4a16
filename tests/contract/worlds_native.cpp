#include "tests/contract/machine_world.h"

namespace contract {

bool engines_are_wine() {
  return false;
}

std::vector<WorldMaker> worlds() {
  return {{"Machine", make_machine_world}};
}

}  // namespace contract
