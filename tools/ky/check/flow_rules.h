#pragma once

#include <span>
#include <vector>

#include "tools/ky/check/flow.h"
#include "tools/ky/check/rules.h"
#include "tools/ky/script/plain_script.h"

namespace check {

/// What the order of the elements and the ways between them tell. Adds to `findings`.
void check_flow(const script::PlainScript& script, std::span<const host::FlowPoint> points, const Flow& flow,
                const FlowGroups& groups, std::vector<Finding>& findings);

}  // namespace check
