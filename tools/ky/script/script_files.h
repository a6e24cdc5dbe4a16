#pragma once

#include <string>

#include "host/script/script_key.h"
#include "tools/ky/script/plain_script.h"

namespace script {

// Each throws `BadInput` with file, place and reason.

/// The text of a script file, plain or enciphered.
[[nodiscard]] std::string read_script_text(const std::string& path);
/// The same, read.
[[nodiscard]] PlainScript read_script_file(const std::string& path);
[[nodiscard]] host::ScriptKey read_key_file(const std::string& path);

void compile_file(const std::string& in, const host::ScriptKey& key, const std::string& out);
void decompile_file(const std::string& in, const host::ScriptKey& key, const std::string& out);

}  // namespace script
