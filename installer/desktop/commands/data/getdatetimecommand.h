#pragma once

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/install_command.h"

namespace ky {

/// Stores the time: seconds since 1970 UTC, of which the low 32 bits are kept, so that it is negative from 2038 on.
///
/// The standard shape but for its first line, which tells key and time; they are therefore taken before it.
///
/// Attributes: var (name of the key without prefix, required)
/// Keys read: none
/// Keys written: int_ of var
/// Results: 0; 1359 when another thread is inside. A load gives 1 where var is missing or does not convert.
class CGetDateTimeCommand final : public Destroyable<CGetDateTimeCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  NarrowHeapString var;
};

}  // namespace ky
