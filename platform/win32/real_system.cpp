#include "platform/ports/build.h"
#include "platform/win32/clock.h"
#include "platform/win32/code_pages.h"
#include "platform/win32/crashes.h"
#include "platform/win32/environment.h"
#include "platform/win32/errors.h"
#include "platform/win32/files.h"
#include "platform/win32/inspection.h"
#include "platform/win32/log_streams.h"
#include "platform/win32/modules.h"
#include "platform/win32/processes.h"
#include "platform/win32/registry.h"
#include "platform/win32/signatures.h"
#include "platform/win32/termination.h"
#include "platform/win32/threads.h"
#include "platform/win32/tokens.h"
#include "platform/win32/winapi_forwards.h"

namespace win32 {

namespace {

/// All ports of the real world and the system that names them.
struct RealWorld {
  Errors errors;
  Clock clock;
  Threads threads;
  Waits waits;
  Files files;
  Registry registry;
  Processes processes;
  ProcessInspection inspection;
  Tokens tokens;
  Signatures signatures;
  Modules modules;
  Resources resources;
  Environment environment;
  Termination termination;
  CodePages text;
  LogStreams log_streams;
  Crashes crashes;
  WinapiForwards winapi;
  std::unique_ptr<ports::Engines> engines = ports::make_engines(errors);
  ports::System system{errors,
                       clock,
                       threads,
                       waits,
                       files,
                       registry,
                       processes,
                       inspection,
                       tokens,
                       signatures,
                       modules,
                       resources,
                       environment,
                       termination,
                       text,
                       log_streams,
                       crashes,
                       winapi,
                       engines->cipher(),
                       engines->key_maker(),
                       engines->xml(),
                       engines->cng(),
                       ports::Module::null};
};

// Made at the first call and kept to the process's end: its engines hold COM objects and providers, which must not be
// given back while a library detaches.
constinit RealWorld* world = nullptr;

}  // namespace

}  // namespace win32

const ports::System* ports::real_system(Module own_module) {
  if (win32::world == nullptr) win32::world = new win32::RealWorld;
  win32::world->system.own_module = own_module;
  return &win32::world->system;
}
