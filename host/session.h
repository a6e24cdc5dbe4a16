#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/current_store.h"
#include "host/factories.h"
#include "host/runner.h"
#include "host/script/program.h"
#include "host/script/remembering_cipher.h"
#include "host/script/script_fault.h"
#include "host/script/script_key.h"
#include "host/store.h"
#include "platform/ports/system.h"

namespace host {

class ScriptDecrypter;

/// One run of one script, from an empty store to its release. There is one at a time in a process, since its store is
/// the one behind `Get` and `Put`; the host's own commands are bound to it as well.
///
/// Order of use: `start`, `load`, `run`, each only after the one before succeeded. The workbench may put keys of its
/// own between `start` and `run`. A store that the command library owns objects in must be released while that library
/// is loaded, which `release`, or else the destructor, does.
class Session {
 public:
  /// `system` is bound for the life of the session, with a cipher that remembers during a load; `library` gives the
  /// commands that are not the host's own. The ports and `library` outlive it.
  Session(const ports::System& system, const Factories& library);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Puts the host's keys. Gives the empty string or, in one line, what stands against a run.
  [[nodiscard]] std::string start(const ScriptKey& key);

  /// Loads and checks an enciphered script. What it gives back are the reasons to refuse it; empty means ready to run.
  [[nodiscard]] std::vector<ScriptFault> load(std::string_view script);

  [[nodiscard]] RunResult run(RunObserver& observer);

  /// The value of `int_ReturnCode`, which the process is to end with.
  [[nodiscard]] std::int32_t return_code() const;

  /// Releases the commands, then everything in the store. Nothing but `return_code` works afterwards.
  void release();

  [[nodiscard]] Store& store() { return store_; }
  [[nodiscard]] const Program& program() const { return program_; }

 private:
  RememberingCipher cipher_;
  ports::System system_;  // with `cipher_`
  TableFactories own_;
  const Factories& library_;
  Store store_;
  CurrentStore current_;
  const ScriptDecrypter* decrypter_ = nullptr;  // the store's, from `start` on
  Program program_;
  std::int32_t return_code_ = 0;
  bool released_ = false;
};

}  // namespace host
