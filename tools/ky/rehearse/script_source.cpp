#include "tools/ky/rehearse/script_source.h"

#include "platform/desk/desk.h"
#include "resources/edition.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/script/compiler.h"
#include "tools/ky/script/plain_script.h"
#include "tools/ky/script/text_cipher.h"

namespace rehearsal {

namespace {

std::string read_or_refuse(const std::string& file, std::uintmax_t limit) {
  std::string bytes;
  if (const std::string reason = desk::read_file(file, limit, bytes); !reason.empty()) {
    throw workbench::BadInput(reason);
  }
  return bytes;
}

host::ScriptKey read_key(const std::string& file) {
  constexpr std::uintmax_t limit = 64u << 10;
  host::ScriptKey key{};
  if (const std::string reason = host::parse_script_key(read_or_refuse(file, limit), key); !reason.empty()) {
    throw workbench::BadInput(file + ": " + reason);
  }
  return key;
}

}  // namespace

ScriptSource script_source(const std::optional<std::string>& file, const std::optional<std::string>& key_file,
                           ports::ScriptCipher& cipher) {
  ScriptSource source;
  source.key = key_file ? read_key(*key_file) : host::built_in_script_key();
  if (!file) {
    source.bytes = edition::script();
    source.title = "the edition's script";
    return source;
  }
  const script::PlainScript plain = script::read_plain_script(*file, read_or_refuse(*file, script::max_script_size));
  source.bytes = script::compile(plain, script::TextCipher(cipher, source.key));
  source.title = *file;
  return source;
}

}  // namespace rehearsal
