#pragma once

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/ky/bad_input.h"

namespace script {

/// A place in a document: line and column, both from 1. A column is a character, not a byte.
struct Position {
  std::size_t line = 1;
  std::size_t column = 1;
  friend auto operator<=>(const Position&, const Position&) = default;
};

/// What a fault offends against, by the names that `ky script check` prints and docs/rules/ explains.
namespace rule {
inline constexpr std::string_view form = "form";
inline constexpr std::string_view undecipherable = "undecipherable";
inline constexpr std::string_view unknown_element = "unknown-element";
inline constexpr std::string_view unknown_attribute = "unknown-attribute";
inline constexpr std::string_view missing_attribute = "missing-attribute";
inline constexpr std::string_view bad_choice = "bad-choice";
inline constexpr std::string_view bad_number = "bad-number";
inline constexpr std::string_view long_value = "long-value";
inline constexpr std::string_view bad_id = "bad-id";
inline constexpr std::string_view duplicate_index = "duplicate-index";
inline constexpr std::string_view lost_way = "lost-way";
}  // namespace rule

/// One reason to refuse a document.
struct Fault {
  Position at;
  std::string reason;
  std::string_view rule = rule::form;
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
