#pragma once

#include <string>
#include <string_view>

#include "tools/ky/check/rules.h"

namespace check {

/// Where a rule is explained, from the repository's root.
[[nodiscard]] std::string page_of(const Rule& rule);

/// The page in Markdown, with the texts of the rule's two example scripts.
[[nodiscard]] std::string rule_page(const Rule& rule, std::string_view bad, std::string_view good);

/// The page that lists all of them, `docs/rules/README.md`.
[[nodiscard]] std::string rule_index();

/// Writes all of them below `root`, the repository, from the examples there. Gives the empty string, or one line: the
/// path and the reason.
[[nodiscard]] std::string write_rule_pages(const std::string& root);

}  // namespace check
