#pragma once

#include <vector>

#include "tools/ky/check/commands.h"
#include "tools/ky/check/flow.h"
#include "tools/ky/check/key_traffic.h"
#include "tools/ky/check/rules.h"

namespace check {

/// What is read and not put before, and what a loop puts and a command has kept. `traffic` knows its puts. Adds to
/// `findings`.
void check_keys(const std::vector<KnownCommand>& commands, const FlowGroups& groups,
                const std::vector<KeyTraffic>& traffic, std::vector<Finding>& findings);

}  // namespace check
