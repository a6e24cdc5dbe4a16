#pragma once

#include <memory>

#include "host/script/noting_converter.h"
#include "host/script/script_key.h"
#include "ky/decrypter.h"
#include "platform/ports/system.h"

namespace host {

/// The host's object under `SelfFree_Decrypter`, with a key of the system's own, which it destroys.
class ScriptDecrypter final : public ky::Destroyable<ScriptDecrypter, ky::Decrypter> {
 public:
  /// Null where the system does not take the key; the last error tells why. `system`'s ports outlive the object.
  [[nodiscard]] static std::unique_ptr<ScriptDecrypter, ky::Releaser> make(const ports::System& system,
                                                                           const ScriptKey& key);
  ~ScriptDecrypter();

  /// How many values could not be turned into wide text so far.
  [[nodiscard]] std::size_t failed_conversions() const { return converter_.failures(); }

 private:
  ScriptDecrypter(const ports::System& system, std::uintptr_t imported);

  ports::ScriptCipher& cipher_;
  NotingConverter converter_;
};

}  // namespace host
