#include "tools/ky/rehearse/script_source.h"

#include "resources/edition.h"
#include "tools/ky/script/compiler.h"
#include "tools/ky/script/script_files.h"
#include "tools/ky/script/text_cipher.h"

namespace rehearsal {

ScriptSource script_source(const std::optional<std::string>& file, const std::optional<std::string>& key_file,
                           ports::ScriptCipher& cipher) {
  ScriptSource source;
  source.key = key_file ? script::read_key_file(*key_file) : host::built_in_script_key();
  if (!file) {
    source.bytes = edition::script();
    source.title = "the edition's script";
    return source;
  }
  source.title = *file;
  source.bytes = script::read_script_text(*file);
  const script::PlainScript read = script::read_plain_script(*file, source.bytes);
  if (!script::is_enciphered(read)) source.bytes = script::compile(read, script::TextCipher(cipher, source.key));
  return source;
}

}  // namespace rehearsal
