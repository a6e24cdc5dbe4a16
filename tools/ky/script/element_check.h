#pragma once

#include <string_view>
#include <vector>

#include "tools/ky/script/plain_script.h"

namespace script {

/// Checks one element against the schema of its command and adds what is wrong to `faults`: a name or attribute that is
/// not known, one that is missing, a value that is too long or should be a number and is none. Says nothing of `index`,
/// `next`, `target` and `id`, which take the whole script to judge.
void check_element(const PlainElement& element, std::vector<Fault>& faults);

/// True where `attribute`, a name or an integer as `expValue` says, is a name on this element.
[[nodiscard]] bool is_name_here(const PlainElement& element);

/// `text` in double quotes, as messages show it.
[[nodiscard]] std::string quoted(std::string_view text);

}  // namespace script
