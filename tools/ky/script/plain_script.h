#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/ky/script/script_error.h"

namespace script {

/// The greatest script that is read.
inline constexpr std::size_t max_script_size = std::size_t{16} << 20;

struct PlainAttribute {
  std::string name;
  std::string value;
  Position at;
};

/// What stands between "<!--" and "-->".
struct PlainComment {
  std::string text;
  Position at;
};

/// One command.
struct PlainElement {
  std::string name;
  std::vector<PlainAttribute> attributes;
  Position at;
  std::vector<PlainComment> comments = {};  // between it and the element before it

  /// Null where the element has no such attribute.
  [[nodiscard]] const PlainAttribute* find(std::string_view attribute) const;
};

/// A script as it is written: its commands in document order.
struct PlainScript {
  std::string file;  // as messages name it
  std::vector<PlainElement> elements;
};

/// Reads `<install version="1.0"><commands>...</commands></install>`: one element a command, without children and text.
/// Names stay as they stand, so an enciphered document is read too. Throws a `ScriptError` at the first fault of form.
[[nodiscard]] PlainScript read_plain_script(std::string file, std::string_view utf8);

/// True where the elements' names are in the enciphered form: no command's name begins with "_".
[[nodiscard]] bool is_enciphered(const PlainScript& script);

}  // namespace script
