#include "platform/machine/environment.h"

namespace machine {

std::wstring Environment::folder(ports::KnownFolder which) {
  const ports::Lock lock(world_.mutex);
  const EnvironmentFacts& facts = world_.state.environment;
  switch (which) {
    case ports::KnownFolder::system:
      return facts.system;
    case ports::KnownFolder::windows:
      return facts.windows;
    case ports::KnownFolder::program_files:
      return facts.program_files;
    case ports::KnownFolder::common_app_data:
    case ports::KnownFolder::all_users_profile:  // one folder since Windows Vista
      return facts.common_app_data;
  }
  return {};
}

std::wstring Environment::command_line() {
  const ports::Lock lock(world_.mutex);
  return world_.state.environment.command_line;
}

}  // namespace machine
