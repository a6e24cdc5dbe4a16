#pragma once

#include <span>
#include <string>

#include "host/script/command_schema.h"

namespace reference {

/// The command's page, in Markdown: purpose, example, attributes, keys, results, remarks.
[[nodiscard]] std::string command_page(const host::CommandSchema& command);

/// The rows of a table of attributes under its heading.
[[nodiscard]] std::string attribute_table(std::span<const host::AttributeSchema> attributes);

}  // namespace reference
