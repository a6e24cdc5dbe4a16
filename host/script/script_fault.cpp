#include "host/script/script_fault.h"

namespace host {

std::string describe(const ScriptFault& fault) {
  if (fault.element == 0) return fault.reason;
  std::string line = "element " + std::to_string(fault.element);
  if (!fault.name.empty()) line += " (" + fault.name + ')';
  if (!fault.attribute.empty()) line += ", attribute \"" + fault.attribute + '"';
  return line + ": " + fault.reason;
}

}  // namespace host
