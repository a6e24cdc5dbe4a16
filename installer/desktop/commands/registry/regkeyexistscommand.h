#pragma once

#include <cstdint>

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/install_command.h"
#include "platform/ports/registry.h"

namespace ky {

/// Stores 1 where a registry key is there and can be read. Otherwise it stores nothing: the variable keeps what an
/// earlier command put.
///
/// Attributes: base (one of the four roots by its full name in capitals, required), subkey (required, expanded at each
///   run; one that does not expand is looked for as it stands), variable (name of the key without prefix, required;
///   more than 95 characters stop the process)
/// Keys read: int_x64 (not 0: the view of 64-bit programs), the variables in subkey
/// Keys written: int_ of variable
/// Results: 0, also where the key is absent; 1359 when another thread is inside. A load gives 1 where an attribute is
///   missing or base is another text.
class CRegKeyExistsCommand final : public Destroyable<CRegKeyExistsCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void LookUp() const;
  void StoreFound() const;

  ports::RegistryKey root = ports::RegistryKey::null;
  HeapString subkey;
  HeapString variable;
};

}  // namespace ky
