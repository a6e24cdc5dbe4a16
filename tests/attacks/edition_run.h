#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/faults/faulty_system.h"
#include "platform/machine/machine.h"
#include "platform/ports/termination.h"
#include "platform/record/change.h"

namespace attacks {

/// The edition's script over one machine, with faults between the logic and the world. The recorder stands behind the
/// faults, as its own look-ups are no part of what is attacked.
class EditionRun {
 public:
  using Plan = std::function<void(faults::FaultySystem&)>;
  /// Looks at what a run did; what it gives stands behind the run's ending.
  using Look = std::function<std::string(const faults::FaultySystem&, const std::vector<record::Change>&)>;
  using Stopped = std::function<void(const ports::StopReason&)>;

  explicit EditionRun(machine::State machine) : machine_(std::move(machine)) {}

  /// One rehearsal from loading to release. Gives in one line how it ended: "refused", "finished" and the like; what
  /// went wrong with it stands behind "!!". `before` plans.
  [[nodiscard]] std::string once(const Plan& before, const Stopped& stopped, const Look& after) const;

 private:
  machine::State machine_;
};

}  // namespace attacks
