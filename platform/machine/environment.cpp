#include "platform/machine/environment.h"

#include <algorithm>

#include "platform/machine/drives.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

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

std::uint32_t Environment::dos_device(const wchar_t* name, std::span<wchar_t> into) {
  const auto failed = [this](ports::ErrorCode error) {
    errors_.set_last(error);
    return 0U;
  };
  const ports::Lock lock(world_.mutex);
  const std::wstring device = device_of(world_.state.files, name == nullptr ? L"" : name);
  if (device.empty()) return failed(ports::code::file_not_found);
  const std::size_t wanted = device.size() + 2;
  if (into.size() < wanted) return failed(ports::code::insufficient_buffer);
  std::fill_n(std::copy(device.begin(), device.end(), into.begin()), 2, L'\0');
  return static_cast<std::uint32_t>(wanted);
}

}  // namespace machine
