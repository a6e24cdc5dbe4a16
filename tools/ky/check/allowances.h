#pragma once

#include <vector>

#include "tools/ky/check/rules.h"
#include "tools/ky/script/plain_script.h"

namespace check {

/// Takes out what comments allow: `<!-- check: allow RULE RULE: reason -->` between an element and the one before it
/// covers the element, with `until #id` behind the rules all elements from there up to that one, which it leaves out. A
/// name that is no rule's is told; one that covers nothing as well, where `told_all` says that each rule had its turn.
[[nodiscard]] std::vector<Finding> without_allowed(const script::PlainScript& script, std::vector<Finding> findings,
                                                   bool told_all);

}  // namespace check
