#pragma once

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/install_command.h"

namespace ky {

/// Stores whether a path exists: 1 or 0. A folder exists like a file.
///
/// Attributes: path (required, expanded at each run), variable (name of the key without prefix, required)
/// Keys read: the variables in path
/// Keys written: int_ of variable
/// Results: 0, also where the key could not be stored; 1359 when another thread is inside. A load gives 1 where an
///   attribute is missing.
class CPathExistsCommand final : public Destroyable<CPathExistsCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void LookUp();

  HeapString path;
  NarrowHeapString variable;
};

}  // namespace ky
