#pragma once

#include <cstdint>

#include "platform/machine/clock.h"
#include "platform/machine/environment_facts.h"
#include "platform/machine/file_tree.h"
#include "platform/machine/pending_moves.h"
#include "platform/machine/privileges.h"
#include "platform/machine/programs.h"
#include "platform/machine/registry_tree.h"
#include "platform/machine/running.h"
#include "platform/machine/started_process.h"
#include "platform/ports/mutex.h"

namespace machine {

/// Everything that a machine is, as plain data. What a machine file holds, and, from `started` on, what it does not.
struct State {
  ClockStart clock;
  EnvironmentFacts environment;
  FileTree files;
  RegistryTree registry;
  Programs programs;
  PendingMoves pending_moves;
  /// What runs beside this process and its parent, as the machine begins and in a copy of its state. A machine that
  /// goes keeps them in its process table.
  RunningPrograms processes;
  std::uint32_t next_id = 8;  // of processes and threads
  StartedProcesses started;
  EndedProcesses ended;
  Privileges enabled_privileges = {privilege::change_notify};  // of this process's token
};

/// The state that the ports share. Its lock is the innermost: the scheduler and the handle table are not called under
/// it, since what the machine does at its time takes it under the scheduler's lock.
struct World {
  ports::Mutex mutex;
  State state KY_GUARDED_BY(mutex);
  std::uint64_t last_owner KY_GUARDED_BY(mutex) = 0;  // of holds on files
};

}  // namespace machine
