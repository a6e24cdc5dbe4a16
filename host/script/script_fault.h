#pragma once

#include <cstddef>
#include <string>

namespace host {

/// Why a script is refused, and where.
struct ScriptFault {
  /// The command element's number in the document, from 1; 0 for the document itself.
  std::size_t element = 0;
  std::string name;       // the element's, deciphered where that works
  std::string attribute;  // empty where the element itself is at fault
  std::string reason;
  friend bool operator==(const ScriptFault&, const ScriptFault&) = default;
};

/// One line without a line end: `element 12 (Jump), attribute "target": no command has index 99`.
[[nodiscard]] std::string describe(const ScriptFault& fault);

}  // namespace host
