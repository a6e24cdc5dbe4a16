#include "platform/faults/faulty_system.h"

#include "platform/faults/faulty_diagnostics.h"
#include "platform/faults/faulty_engines.h"
#include "platform/faults/faulty_files.h"
#include "platform/faults/faulty_inspection.h"
#include "platform/faults/faulty_registry.h"
#include "platform/faults/faulty_world.h"

namespace faults {

struct FaultySystem::Ports {
  explicit Ports(const ports::System& inner)
      : threads(inner.threads, gate, inner.errors),
        waits(inner.waits, gate, inner.errors),
        files(inner.files, gate, inner.errors),
        registry(inner.registry, gate, inner.errors),
        processes(inner.processes, gate, inner.errors),
        modules(inner.modules, gate, inner.errors),
        resources(inner.resources, gate, inner.errors),
        environment(inner.environment, gate, inner.errors),
        text(inner.text, gate, inner.errors),
        log_streams(inner.log_streams, gate, inner.errors),
        crashes(inner.crashes, gate, inner.errors),
        winapi(inner.winapi, gate, inner.errors),
        cipher(inner.cipher, gate, inner.errors),
        key_maker(inner.key_maker, gate, inner.errors),
        xml(inner.xml, gate, inner.errors),
        cng(inner.cng, gate, inner.errors),
        inspection(inner.inspection, gate, inner.errors),
        tokens(inner.tokens, gate, inner.errors),
        signatures(inner.signatures, gate, inner.errors),
        system(ports::with(inner, threads, waits, files, registry, processes, inspection, tokens, signatures, modules,
                           resources, environment, text, log_streams, crashes, winapi, cipher, key_maker, xml, cng)) {}

  Gate gate;
  FaultyThreads threads;
  FaultyWaits waits;
  FaultyFiles files;
  FaultyRegistry registry;
  FaultyProcesses processes;
  FaultyModules modules;
  FaultyResources resources;
  FaultyEnvironment environment;
  FaultyCodePages text;
  FaultyLogStreams log_streams;
  FaultyCrashes crashes;
  FaultyWinapi winapi;
  FaultyCipher cipher;
  FaultyKeyMaker key_maker;
  FaultyXml xml;
  FaultyCng cng;
  FaultyInspection inspection;
  FaultyTokens tokens;
  FaultySignatures signatures;
  ports::System system;
};

FaultySystem::FaultySystem(const ports::System& inner) : ports_(std::make_unique<Ports>(inner)) {}

FaultySystem::~FaultySystem() = default;

void FaultySystem::fail(Operation operation, std::uint64_t call, bool for_good, ports::ErrorCode code) {
  ports_->gate.fail(operation, call, for_good, code);
}

std::uint64_t FaultySystem::calls(Operation operation) const {
  return ports_->gate.calls(operation);
}

std::uint64_t FaultySystem::failed(Operation operation) const {
  return ports_->gate.failed(operation);
}

const ports::System& FaultySystem::system() const {
  return ports_->system;
}

}  // namespace faults
