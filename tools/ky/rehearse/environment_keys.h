#pragma once

#include <map>
#include <set>
#include <string>

#include "tools/ky/rehearse/outcome.h"

namespace rehearsal {

/// The globals whose values depend on the place and the moment: the paths and command lines that the host put, and
/// every text that holds one of these paths.
[[nodiscard]] std::set<std::string> environment_keys(const std::map<std::string, GlobalValue>& globals);

}  // namespace rehearsal
