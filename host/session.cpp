#include "host/session.h"

#include <utility>

#include "host/commands/own_commands.h"
#include "host/host_keys.h"
#include "host/script/script_decrypter.h"
#include "host/script/script_loader.h"
#include "installer/desktop/commands/base/global_data.h"
#include "ky/keys.h"

namespace host {

Session::Session(const ports::System& system, const Factories& library)
    : cipher_(system.cipher),
      system_(ports::with(system, cipher_)),
      own_(own_commands()),
      library_(library),
      current_(store_) {
  ports::bind(system_);
  ky::BindStore(&get_current, &put_current);
}

Session::~Session() {
  release();
  ports::unbind();
}

std::string Session::start(const ScriptKey& key) {
  auto decrypter = ScriptDecrypter::make(system_, key);
  if (decrypter == nullptr) {
    return "the system does not take the script key, error " + std::to_string(system_.errors.last());
  }
  decrypter_ = decrypter.get();
  return put_host_keys(system_, decrypter.release(), store_);
}

std::vector<ScriptFault> Session::load(std::string_view script) {
  const RememberingCipher::Memory memory(cipher_, decrypter_->key);
  LoadedScript loaded = ScriptLoader(system_, *decrypter_, {&library_, &own_}).load(script);
  program_ = std::move(loaded.program);
  return std::move(loaded.faults);
}

RunResult Session::run(RunObserver& observer) {
  return host::run(program_, store_, system_.termination, observer);
}

std::int32_t Session::return_code() const {
  return released_ ? return_code_ : ky::FromStored<std::int32_t>(store_.get(ky::keys::int_ReturnCode.name));
}

void Session::release() {
  if (std::exchange(released_, true)) return;
  return_code_ = ky::FromStored<std::int32_t>(store_.get(ky::keys::int_ReturnCode.name));
  program_ = Program();
  store_.release_all(system_.waits, system_.modules);
}

}  // namespace host
