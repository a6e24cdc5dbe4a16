#pragma once

#include "platform/ports/registry.h"
#include "platform/ports/system.h"

namespace winapi {

/// Holds a registry key that was opened through the bound system, and closes it.
class scoped_registry_key {
 public:
  scoped_registry_key() = default;
  ~scoped_registry_key() {
    if (key_ != ports::RegistryKey::null) (void)ports::system().registry.close(key_);
  }
  scoped_registry_key(const scoped_registry_key&) = delete;
  scoped_registry_key& operator=(const scoped_registry_key&) = delete;

  [[nodiscard]] ports::RegistryKey get() const noexcept { return key_; }
  /// Where an opening call puts the key, once.
  [[nodiscard]] ports::RegistryKey& receive() noexcept { return key_; }

 private:
  ports::RegistryKey key_ = ports::RegistryKey::null;
};

}  // namespace winapi
