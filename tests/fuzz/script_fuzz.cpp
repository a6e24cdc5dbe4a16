#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tools/ky/desk_engines.h"
#include "tools/ky/script/compiler.h"
#include "tools/ky/script/decompiler.h"

namespace {

const script::TextCipher& cipher() {
  static workbench::DeskEngines desk;
  static const script::TextCipher made(desk.engines().cipher(), host::ScriptKey{});
  return made;
}

}  // namespace

/// No text breaks the reader, and what compiles comes back from its inverse to the same bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  std::string enciphered;
  try {
    enciphered = script::compile(script::read_plain_script("input", text), cipher());
  } catch (const workbench::BadInput&) {
    return 0;
  }
  const std::string plain = script::decompile(script::read_plain_script("enciphered", enciphered), cipher());
  if (script::compile(script::read_plain_script("plain", plain), cipher()) != enciphered) std::abort();
  return 0;
}
