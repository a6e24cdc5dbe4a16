#pragma once

#include <string_view>

#include "platform/machine/state.h"
#include "platform/ports/driver_store.h"

namespace ports {
class Errors;
}

namespace machine {

/// The machine's driver store: an INF file of the Windows folder says itself where it came from, see `FileNode::store`.
class DriverStore final : public ports::DriverStore {
 public:
  DriverStore(World& world, ports::Errors& errors) : world_(world), errors_(errors) {}

  [[nodiscard]] bool inf_location(const wchar_t* inf, std::span<wchar_t> into, std::uint32_t& required) override;

 private:
  World& world_;
  ports::Errors& errors_;
};

/// Takes the package away of which an INF file stands under this name in the Windows folder: that file and the folder
/// in the store. What is in use stays.
void remove_driver(State& state, std::wstring_view inf);
/// What stands last on a command line, without quotes.
[[nodiscard]] std::wstring_view last_argument(std::wstring_view command_line);

}  // namespace machine
