#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tools/ky/script/script_error.h"

namespace check {

enum class Severity : std::uint8_t {
  warning,  // the script runs, and probably not as it is meant
  error,    // the script is refused, stops, or has a command that cannot do its work
};

/// "error" or "warning".
[[nodiscard]] std::string_view name_of(Severity severity);

/// One thing that scripts are checked for.
struct Rule {
  std::string_view name;
  Severity severity = Severity::error;
  std::string_view summary;  // one sentence
  std::string_view reason;   // what comes of it, in Markdown
  std::string_view remedy;   // what to do, in Markdown
};

// Beside those that keep a script from being compiled, which script::rule names.
namespace rule {
using namespace script::rule;
inline constexpr std::string_view bad_expression = "bad-expression";
inline constexpr std::string_view bad_xpath = "bad-xpath";
inline constexpr std::string_view descending_index = "descending-index";
inline constexpr std::string_view endless_loop = "endless-loop";
inline constexpr std::string_view idle_allowance = "idle-allowance";
inline constexpr std::string_view ignored_attribute = "ignored-attribute";
inline constexpr std::string_view ignored_tail = "ignored-tail";
inline constexpr std::string_view kept_expansion = "kept-expansion";
inline constexpr std::string_view missing_backslash = "missing-backslash";
inline constexpr std::string_view numbered_gap = "numbered-gap";
inline constexpr std::string_view odd_name = "odd-name";
inline constexpr std::string_view undefined_variable = "undefined-variable";
inline constexpr std::string_view unreachable = "unreachable";
inline constexpr std::string_view unwritten_key = "unwritten-key";
inline constexpr std::string_view xpath_brackets = "xpath-brackets";
}  // namespace rule

/// All rules, sorted by name.
[[nodiscard]] std::span<const Rule> all_rules();

/// Null for what is no rule's name.
[[nodiscard]] const Rule* find_rule(std::string_view name);

/// One offence against a rule.
struct Finding {
  script::Position at;
  std::string_view rule;
  std::string message;  // one line
};

}  // namespace check
