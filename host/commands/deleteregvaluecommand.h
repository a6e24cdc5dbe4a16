#pragma once

#include <string>

#include "host/commands/deleting_command.h"

namespace host {

/// Deletes a registry value; see `RegistryRemoval` for how links are kept out.
///
/// Attributes: base (name of a root, required), subkey (text, required; "*\..." below HKEY_USERS means each user),
/// value
///   (text, required; empty is the key's default value). The texts are expanded at each run.
/// Keys read: int_x64 (not 0: the keys are those of 64-bit programs), and those that the texts name
/// Keys written: none
/// Results: 0 where the value is gone or was absent; 31 where a text names an undefined variable; 87 for a base or
/// subkey
///   that is none; 681 for a link on the way or at its end; otherwise the error of the deletion; 1359 when another
///   thread is inside. A load gives 87 where an attribute is missing.
class CDeleteRegValueCommand final : public ky::Destroyable<CDeleteRegValueCommand, DeletingCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(ky::AttributeMap** map) override;

 private:
  [[nodiscard]] std::uint32_t Delete();

  std::wstring base;
  std::wstring subkey;
  std::wstring value;
};

}  // namespace host
