#include "host/script/script_decrypter.h"

#include "platform/ports/script_cipher.h"

namespace host {

std::unique_ptr<ScriptDecrypter, ky::Releaser> ScriptDecrypter::make(const ports::System& system,
                                                                     const ScriptKey& key) {
  const std::uintptr_t imported = system.cipher.import_key(key);
  if (imported == 0) return nullptr;
  return std::unique_ptr<ScriptDecrypter, ky::Releaser>(new ScriptDecrypter(system, imported));
}

ScriptDecrypter::ScriptDecrypter(const ports::System& system, std::uintptr_t imported)
    : cipher_(system.cipher), converter_(system.winapi) {
  key = imported;
  converter = &converter_;
}

ScriptDecrypter::~ScriptDecrypter() {
  cipher_.destroy_key(key);
}

}  // namespace host
