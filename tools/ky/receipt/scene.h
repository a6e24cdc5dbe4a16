#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/machine/state.h"
#include "tools/ky/receipt/targets.h"

namespace receipt {

/// Whether a thing is there, and what is to be known of it where it is.
struct Sight {
  bool there = false;
  std::wstring note{};
};

/// A copy of a machine to look for things in: as plain data, so that rights, privileges and open handles hide nothing.
/// The hives of all users are mounted in it under the users' own names, also those that a run left mounted under
/// others.
class Scene {
 public:
  explicit Scene(machine::State state);

  [[nodiscard]] Sight look(const Target& target) const;

  /// The users' keys below HKEY_USERS.
  [[nodiscard]] std::vector<std::wstring> users() const;
  /// Those of them that a script reaches without mounting anything.
  [[nodiscard]] const std::vector<std::wstring>& users_at_hand() const { return at_hand_; }

 private:
  [[nodiscard]] Sight look_at_path(std::wstring_view path) const;
  [[nodiscard]] Sight look_at_key(const Target& target) const;
  [[nodiscard]] Sight look_at_task(const std::wstring& name) const;
  [[nodiscard]] Sight look_at_driver(const std::wstring& inf) const;
  [[nodiscard]] Sight look_at_process(const Target& target) const;
  [[nodiscard]] machine::NodeId file_of(std::wstring_view path) const;
  void mount_all();

  machine::State state_;
  std::vector<std::wstring> at_hand_;
};

/// A key's path with the user's own name where it has that of a hive mounted for the run.
[[nodiscard]] std::wstring under_own_name(std::wstring_view path);

}  // namespace receipt
