#pragma once

#include <string>

#include "host/commands/deleting_command.h"

namespace host {

/// Deletes a registry key; see `RegistryRemoval` for how links are kept out and `decide_registry_key` for the keys that
/// it refuses.
///
/// Attributes: base (name of a root, required), subkey (text, required; "*\..." below HKEY_USERS means each user),
///   recursive (flag: what is below goes too). The texts are expanded at each run.
/// Keys read: int_x64 (not 0: the keys are those of 64-bit programs), and those that base and subkey name
/// Keys written: none
/// Results: 0 where the key is gone or was absent; 31 where a text names an undefined variable; 87 for a key that it
///   refuses; 681 for a link on the way; 1020 for a key with subkeys without recursive; otherwise the error of the
///   first key that stays; 1359 when another thread is inside. A load gives 87 where an attribute is missing.
class CDeleteRegKeyCommand final : public ky::Destroyable<CDeleteRegKeyCommand, DeletingCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(ky::AttributeMap** map) override;

 private:
  [[nodiscard]] std::uint32_t Delete();

  std::wstring base;
  std::wstring subkey;
  bool recursive = false;
};

}  // namespace host
