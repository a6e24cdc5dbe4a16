#pragma once

#include <string>

#include "tools/ky/script/plain_script.h"
#include "tools/ky/script/text_cipher.h"

namespace script {

/// The enciphered document of a script: one line of UTF-8 with a byte order mark. The attribute `id` goes, and `#id` in
/// `target` and `next` becomes the index of the element that has it. Throws a `ScriptError` with all faults: unknown
/// commands, missing attributes, indexes that are taken twice, no numbers or out of range, ids that are unknown or
/// taken twice, ways to an index that no element has, values that are too long.
[[nodiscard]] std::string compile(const PlainScript& script, const TextCipher& cipher);

}  // namespace script
