#include "tools/ky/script/script_files.h"

#include "platform/desk/desk.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/script/compiler.h"
#include "tools/ky/script/decompiler.h"

namespace script {

namespace {

constexpr std::size_t max_key_size = 4096;

void require(const std::string& failure) {
  if (!failure.empty()) throw workbench::BadInput(failure);
}

template <class Convert>
void convert_file(const std::string& in, const host::ScriptKey& key, const std::string& out, Convert convert) {
  const PlainScript script = read_script_file(in);
  workbench::DeskEngines desk;
  const TextCipher cipher(desk.engines().cipher(), key);
  require(desk::write_file(out, convert(script, cipher)));
}

}  // namespace

std::string read_script_text(const std::string& path) {
  std::string text;
  require(desk::read_file(path, max_script_size, text));
  return text;
}

PlainScript read_script_file(const std::string& path) {
  return read_plain_script(path, read_script_text(path));
}

host::ScriptKey read_key_file(const std::string& path) {
  std::string text;
  require(desk::read_file(path, max_key_size, text));
  host::ScriptKey key{};
  const std::string reason = host::parse_script_key(text, key);
  if (!reason.empty()) throw workbench::BadInput(path + ": " + reason);
  return key;
}

void compile_file(const std::string& in, const host::ScriptKey& key, const std::string& out) {
  convert_file(in, key, out, compile);
}

void decompile_file(const std::string& in, const host::ScriptKey& key, const std::string& out) {
  convert_file(in, key, out, decompile);
}

}  // namespace script
