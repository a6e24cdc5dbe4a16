#include "tools/ky/check/commands.h"

#include <utility>

#include "host/script/encipher.h"

namespace check {

std::vector<KnownCommand> know_commands(const script::PlainScript& script) {
  std::vector<KnownCommand> commands;
  commands.reserve(script.elements.size());
  for (const script::PlainElement& element : script.elements) {
    KnownCommand command{&element, host::schema_of(element.name), {}};
    if (command.schema != nullptr) {
      for (const script::PlainAttribute& attribute : element.attributes) {
        if (attribute.value.size() > host::longest_plain_value) continue;
        const host::FoundAttribute found = host::find_attribute(*command.schema, attribute.name);
        if (found.schema != nullptr) command.attributes.push_back({&attribute, found.schema, found.number});
      }
    }
    commands.push_back(std::move(command));
  }
  return commands;
}

std::vector<std::string_view> expanded_names(std::string_view value) {
  std::vector<std::string_view> names;
  std::size_t open = value.find('[');
  while (open != std::string_view::npos) {
    const std::size_t close = value.find(']', open);
    if (close == std::string_view::npos || close == open + 1) break;
    names.push_back(value.substr(open + 1, close - open - 1));
    open = value.find('[', close);
  }
  return names;
}

}  // namespace check
