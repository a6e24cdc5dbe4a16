#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/script/command_schema.h"
#include "tools/ky/script/plain_script.h"

namespace check {

/// An attribute and what its command makes of it.
struct KnownAttribute {
  const script::PlainAttribute* written = nullptr;
  const host::AttributeSchema* schema = nullptr;
  std::int32_t number = 0;  // in its family; 0 for an attribute of its own
};

/// An element whose command is known, with those of its attributes that the command has and could read.
struct KnownCommand {
  const script::PlainElement* element = nullptr;
  const host::CommandSchema* schema = nullptr;  // null where the element is no command
  std::vector<KnownAttribute> attributes;

  [[nodiscard]] bool has(std::string_view attribute) const { return element->find(attribute) != nullptr; }
};

/// One for each element. They point into `script`, which outlives them.
[[nodiscard]] std::vector<KnownCommand> know_commands(const script::PlainScript& script);

/// The names between brackets that an expansion of `value` looks up, in their order: it ends at "[]" and at a bracket
/// that is not closed.
[[nodiscard]] std::vector<std::string_view> expanded_names(std::string_view value);

}  // namespace check
