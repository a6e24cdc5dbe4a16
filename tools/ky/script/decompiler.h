#pragma once

#include <string>

#include "tools/ky/script/plain_script.h"
#include "tools/ky/script/text_cipher.h"

namespace script {

/// The plain text of an enciphered script, one element a line. An element that another's `target` or `next` names gets
/// `id="n<index>"`, and the way to it says `#n<index>`, the way to the script's end `#end`. What `compile` made is made
/// again, byte for byte, by compiling the result. Throws a `ScriptError` with every name and value that does not
/// decipher.
[[nodiscard]] std::string decompile(const PlainScript& enciphered, const TextCipher& cipher);

}  // namespace script
