#pragma once

#include <type_traits>

#include "platform/ports/status.h"
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
class ProcessInspection;
class Processes;
class Registry;
class Resources;
class ScriptCipher;
class Signatures;
class Termination;
class Threads;
class Tokens;
class Waits;
class Xml;

/// The calling thread's last error. Calls that fail set it (a failing call may leave 0), calls that succeed leave it.
class Errors {
 public:
  virtual ~Errors() = default;
  [[nodiscard]] virtual ErrorCode last() = 0;
  virtual void set_last(ErrorCode code) = 0;
  /// RtlNtStatusToDosError: the code that stands for a status; mr_mid_not_found where there is none.
  [[nodiscard]] virtual ErrorCode of_status(Status status) = 0;
};

/// All of the system that the logic reaches: a set of ports, none of them owned. `with` wraps some of them.
struct System {
  // The world: the real one or a machine.
  Errors& errors;
  Clock& clock;
  Threads& threads;
  Waits& waits;
  Files& files;
  Registry& registry;
  Processes& processes;
  ProcessInspection& inspection;
  Tokens& tokens;
  Signatures& signatures;
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

/// `inner` with some of its ports replaced, each by an object of a class that derives from the port's.
template <class... Replacements>
[[nodiscard]] System with(const System& inner, Replacements&... replacements);

/// The system that the process's logic is bound to. Bound once, before the first factory is called; a rehearsal or test
/// binds another when nothing of the logic is alive. `system` without a bound one is a programming error and aborts.
void bind(const System& system);
void unbind();
[[nodiscard]] const System& system();

namespace details {

template <class Port>
Port& chosen(Port& inner) {
  return inner;
}

template <class Port, class First, class... Rest>
Port& chosen(Port& inner, First& first, Rest&... rest) {
  if constexpr (std::is_base_of_v<Port, First>) {
    return first;
  } else {
    return chosen(inner, rest...);
  }
}

}  // namespace details

template <class... Replacements>
System with(const System& inner, Replacements&... replacements) {
  const auto or_replaced = [&replacements...](auto& port) -> auto& { return details::chosen(port, replacements...); };
  return {or_replaced(inner.errors),
          or_replaced(inner.clock),
          or_replaced(inner.threads),
          or_replaced(inner.waits),
          or_replaced(inner.files),
          or_replaced(inner.registry),
          or_replaced(inner.processes),
          or_replaced(inner.inspection),
          or_replaced(inner.tokens),
          or_replaced(inner.signatures),
          or_replaced(inner.modules),
          or_replaced(inner.resources),
          or_replaced(inner.environment),
          or_replaced(inner.termination),
          or_replaced(inner.text),
          or_replaced(inner.log_streams),
          or_replaced(inner.crashes),
          or_replaced(inner.winapi),
          or_replaced(inner.cipher),
          or_replaced(inner.key_maker),
          or_replaced(inner.xml),
          or_replaced(inner.cng),
          inner.own_module};
}

}  // namespace ports
