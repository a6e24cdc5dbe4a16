#pragma once

#include <compare>
#include <cstddef>
#include <string>
#include <vector>

#include "tools/ky/bad_input.h"

namespace script {

/// A place in a document: line and column, both from 1. A column is a character, not a byte.
struct Position {
  std::size_t line = 1;
  std::size_t column = 1;
  friend auto operator<=>(const Position&, const Position&) = default;
};

/// One reason to refuse a document.
struct Fault {
  Position at;
  std::string reason;
  friend bool operator==(const Fault&, const Fault&) = default;
};

/// A refused document. The message has one line `file:line:column: reason` for each fault, sorted by place.
class ScriptError : public workbench::BadInput {
 public:
  ScriptError(const std::string& file, std::vector<Fault> faults);
  [[nodiscard]] const std::vector<Fault>& faults() const { return faults_; }

 private:
  std::vector<Fault> faults_;
};

}  // namespace script
