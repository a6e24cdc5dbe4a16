#include "tools/ky/script/compiler.h"

#include <string_view>

#include "tools/ky/script/resolved_script.h"

namespace script {

namespace {

constexpr std::string_view document_begin =
    "\xEF\xBB\xBF<install version=\"1.0\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
    " xsi:noNamespaceSchemaLocation=\"../installerxmlschema.xsd\"><commands>";
constexpr std::string_view document_end = "</commands></install>";

}  // namespace

std::string compile(const PlainScript& script, const TextCipher& cipher) {
  if (is_enciphered(script)) {
    throw ScriptError(script.file, {{script.elements.front().at, "the script is enciphered already"}});
  }
  const PlainScript resolved = resolve(script);
  std::string document(document_begin);
  for (const PlainElement& element : resolved.elements) {
    document += '<' + cipher.encipher(element.name);
    // What is enciphered holds no character that would need a reference.
    for (const PlainAttribute& attribute : element.attributes) {
      document += ' ' + attribute.name + "=\"" + cipher.encipher(attribute.value) + '"';
    }
    document += "/>";
  }
  document += document_end;
  return document;
}

}  // namespace script
