#pragma once

#include <span>
#include <string>
#include <string_view>

namespace host {

/// What a command's element must hold for the command to be of use.
struct CommandRule {
  std::string_view stem;
  std::wstring_view required[3] = {};
  /// At least one of these, where there are any.
  std::wstring_view one_of[2] = {};
};

/// Null for what is neither a command of the library nor one of the host's own: each of those has its rule.
[[nodiscard]] const CommandRule* rule_of(std::string_view stem);

/// The first thing that an element with these attributes lacks, in words; empty where it lacks nothing.
[[nodiscard]] std::string missing_attribute(const CommandRule& rule, std::span<const std::wstring> attributes);

}  // namespace host
