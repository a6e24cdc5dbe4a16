#pragma once

#include <optional>
#include <string>

#include "host/script/script_key.h"
#include "platform/ports/script_cipher.h"

namespace rehearsal {

/// An enciphered script and the key that it is enciphered with.
struct ScriptSource {
  std::string bytes;
  host::ScriptKey key{};
  std::string title;  // for people
};

/// The script in `file`, compiled where it is plain; without a file it is the edition's. The key is the build's unless
/// `key_file` names another. Throws `workbench::BadInput` with file, place and reason.
[[nodiscard]] ScriptSource script_source(const std::optional<std::string>& file,
                                         const std::optional<std::string>& key_file, ports::ScriptCipher& cipher);

}  // namespace rehearsal
