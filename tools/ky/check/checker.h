#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/script/script_key.h"
#include "tools/ky/check/rules.h"
#include "tools/ky/script/plain_script.h"

namespace ports {
class Engines;
class Xml;
}  // namespace ports

namespace check {

/// All that is wrong or doubtful in a plain script, sorted by place. Where ways lead nowhere, what takes a run to judge
/// is left out; where a command or attribute is unknown, so are the variables: each would be told for the same fault.
[[nodiscard]] std::vector<Finding> check(const script::PlainScript& script, ports::Xml& xml);

/// The same for a script's text, plain or enciphered. A file that cannot be read as a script has one finding, or as
/// many as there are values that do not decipher. Findings in an enciphered script have the places of its decompiled
/// text.
[[nodiscard]] std::vector<Finding> check_text(const std::string& file, std::string_view text,
                                              const host::ScriptKey& key, ports::Engines& engines);

}  // namespace check
