#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/machine/environment_facts.h"

namespace machine {

/// A variable of the process's environment: those of the known folders.
[[nodiscard]] std::optional<std::wstring> environment_variable(const EnvironmentFacts& facts, std::wstring_view name);

/// The text with each %name% replaced; one that names no variable stays as it is. As in the system, the percent sign
/// behind it may then begin another.
[[nodiscard]] std::wstring expand_variables(const EnvironmentFacts& facts, std::wstring_view text);

}  // namespace machine
