#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tools/ky/check/commands.h"
#include "tools/ky/check/rules.h"

namespace check {

/// What single values tell, and values beside each other, whatever the run's ways: names, numbered families, attributes
/// that do nothing, expressions, folders. Adds to `findings`.
void check_values(const std::vector<KnownCommand>& commands, std::vector<Finding>& findings);

/// The first of a family's numbers, ascending, that its command does not look at; 0 where it looks at all. With gaps
/// allowed a command looks at numbers up to `readable`.
[[nodiscard]] std::int32_t first_unread(std::span<const std::int32_t> numbers, bool gaps_allowed, std::size_t readable);

}  // namespace check
