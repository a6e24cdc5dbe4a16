#pragma once

#include <string>
#include <string_view>

#include "tools/ky/graph/flow.h"

namespace graph {

/// The flow in Graphviz' language, for its program `dot`. `title` is a file's name, for the heading.
[[nodiscard]] std::string dot_text(const Flow& flow, std::string_view title);

}  // namespace graph
