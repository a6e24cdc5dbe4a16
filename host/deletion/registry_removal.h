#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/deletion/registry_target.h"
#include "platform/ports/registry.h"

namespace host {

/// Holds a registry key and closes it; predefined keys need none.
class OpenKey {
 public:
  explicit OpenKey(ports::Registry& registry) : registry_(&registry) {}
  ~OpenKey() { reset(); }
  OpenKey(OpenKey&& other) noexcept
      : registry_(other.registry_), key_(std::exchange(other.key_, ports::RegistryKey::null)) {}
  OpenKey& operator=(OpenKey&& other) noexcept {
    std::swap(key_, other.key_);
    return *this;
  }

  [[nodiscard]] ports::RegistryKey get() const { return key_; }
  [[nodiscard]] ports::RegistryKey& receive() {
    reset();
    return key_;
  }

 private:
  void reset() {
    if (key_ != ports::RegistryKey::null) (void)registry_->close(std::exchange(key_, ports::RegistryKey::null));
  }

  ports::Registry* registry_;
  ports::RegistryKey key_ = ports::RegistryKey::null;
};

/// Deletes keys and values and follows no registry link on the way: every part of a subkey is opened as itself, below
/// the handle of the one before it. A link is deleted as a link where it is the target or lies below it, and refused
/// anywhere else. Results are 0 where the thing is gone or was not there; stopped_on_symlink (a link on the way,
/// nothing is deleted); key_has_children (without `recursive`); otherwise the code of the first thing that stays.
class RegistryRemoval {
 public:
  /// `view` is a view of `registry_access` that every key is opened in, or 0 for the process's own.
  RegistryRemoval(ports::Registry& registry, std::uint32_t view) : registry_(registry), view_(view) {}

  /// `target` was not refused.
  [[nodiscard]] ports::ErrorCode remove_key(const RegistryTarget& target, bool recursive);
  /// An empty `name` is the key's default value.
  [[nodiscard]] ports::ErrorCode remove_value(const RegistryTarget& target, const std::wstring& name);

 private:
  /// Calls `act` with the parts of the target, or of the target below each user.
  template <class Act>
  ports::ErrorCode for_each_place(const RegistryTarget& target, Act&& act);

  [[nodiscard]] ports::ErrorCode open(ports::RegistryKey root, std::span<const std::wstring> parts,
                                      std::uint32_t access, OpenKey& out, bool& link);
  [[nodiscard]] ports::ErrorCode open_part(ports::RegistryKey parent, const std::wstring& name, std::uint32_t options,
                                           std::uint32_t access, OpenKey& out, bool& link);
  [[nodiscard]] ports::ErrorCode is_link(ports::RegistryKey key, bool& link);
  [[nodiscard]] ports::ErrorCode names_below(ports::RegistryKey key, std::vector<std::wstring>& names);
  [[nodiscard]] ports::ErrorCode remove_open(ports::RegistryKey key, bool link, bool recursive);
  [[nodiscard]] ports::ErrorCode remove_below(ports::RegistryKey key);

  ports::Registry& registry_;
  std::uint32_t view_;
};

}  // namespace host
