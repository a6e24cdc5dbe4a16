#include "host/factories.h"

#include <algorithm>
#include <string>

#include "platform/ports/modules.h"

namespace host {

ky::Factory ModuleFactories::find(std::string_view stem) const {
  const std::string name = std::string("GetC").append(stem).append("Command");
  // A name with a zero inside would be looked up by its first part.
  if (name.find('\0') != std::string::npos) return nullptr;
  return reinterpret_cast<ky::Factory>(modules_.procedure(module_, name.c_str()));
}

ky::Factory TableFactories::find(std::string_view stem) const {
  const auto found =
      std::find_if(table_.begin(), table_.end(), [stem](const NamedFactory& row) { return row.stem == stem; });
  return found == table_.end() ? nullptr : found->make;
}

}  // namespace host
