#pragma once

#include <string_view>
#include <vector>

#include "host/script/command_schema.h"
#include "tools/ky/script/plain_script.h"

namespace script {

/// Checks one element against the schema of its command and adds what is wrong to `faults`: a name or attribute that is
/// not known, one that is missing, a value that is too long,
/// no number where it should be one, or none of those that may stand there. Says nothing of `index`,
/// `next`, `target` and `id`, which take the whole script to judge.
void check_element(const PlainElement& element, std::vector<Fault>& faults);

/// True where an attribute of the form `integer_or_name` is a name on this element.
[[nodiscard]] bool is_name_here(const PlainElement& element, const host::AttributeSchema& schema);

/// `text` in double quotes, as messages show it.
[[nodiscard]] std::string quoted(std::string_view text);

}  // namespace script
