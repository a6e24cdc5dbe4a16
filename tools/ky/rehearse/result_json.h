#pragma once

#include <string>

#include "tools/ky/rehearse/outcome.h"

namespace rehearsal {

/// The text of `result.json`, a published form (docs/result.md): UTF-8, members sorted, LF line ends.
[[nodiscard]] std::string to_json(const Outcome& outcome);

}  // namespace rehearsal
