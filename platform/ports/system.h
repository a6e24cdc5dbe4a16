#pragma once

#include "platform/ports/types.h"

namespace ky {
class CWinapiInterface;
}

namespace ports {

class Clock;
class Cng;
class CodePages;
class Crashes;
class Environment;
class Files;
class KeyMaker;
class LogStreams;
class Modules;
class Processes;
class Registry;
class Resources;
class ScriptCipher;
class Termination;
class Threads;
class Waits;
class Xml;

/// The calling thread's last error. Calls that fail set it (a failing call may leave 0), calls that succeed leave it.
class Errors {
 public:
  virtual ~Errors() = default;
  [[nodiscard]] virtual ErrorCode last() = 0;
  virtual void set_last(ErrorCode code) = 0;
};

/// All of the system that the logic reaches: a set of ports, none of them owned. Copy it and replace a port to wrap it.
struct System {
  // The world: the real one or a machine.
  Errors& errors;
  Clock& clock;
  Threads& threads;
  Waits& waits;
  Files& files;
  Registry& registry;
  Processes& processes;
  Modules& modules;
  Resources& resources;
  Environment& environment;
  Termination& termination;
  CodePages& text;
  LogStreams& log_streams;
  Crashes& crashes;
  ky::CWinapiInterface& winapi;  // for the Decrypter's converter
  // The build's engines.
  ScriptCipher& cipher;
  KeyMaker& key_maker;
  Xml& xml;
  Cng& cng;
  // The module whose resources hold the documents.
  Module own_module;
};

/// The system that the process's logic is bound to. Bound once, before the first factory is called; a rehearsal or test
/// binds another when nothing of the logic is alive. `system` without a bound one is a programming error and aborts.
void bind(const System& system);
void unbind();
[[nodiscard]] const System& system();

}  // namespace ports
