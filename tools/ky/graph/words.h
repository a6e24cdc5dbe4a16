#pragma once

#include <cstdint>
#include <string>

#include "tools/ky/script/plain_script.h"

namespace graph {

// What a command says, in words; of any length, and not yet marked up.

/// What it works on: "SuitePath = [ProgramFilesPath]Tavrine\". Empty where its name says it all.
[[nodiscard]] std::string subject_of(const script::PlainElement& element);

/// When a jump goes to its target: "Installed = 0".
[[nodiscard]] std::string condition_of(const script::PlainElement& jump);

/// "only if Installed", or empty for a command that is never skipped.
[[nodiscard]] std::string proviso_of(const script::PlainElement& element);

/// Its index and name, and each attribute in a line of its own.
[[nodiscard]] std::string everything_of(const script::PlainElement& element, std::int32_t index);

}  // namespace graph
