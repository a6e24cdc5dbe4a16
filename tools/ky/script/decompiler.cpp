#include "tools/ky/script/decompiler.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "host/script/decipherer.h"
#include "installer/utils/base/strings/number.h"
#include "installer/utils/base/strings/utf8.h"
#include "tools/ky/script/resolved_script.h"
#include "tools/ky/script/xml_cursor.h"

namespace script {

namespace {

bool is_xml_text(std::string_view text) {
  const std::wstring wide = base::strings::to_wide(text);
  // Of the pairs that a wide string holds, every one is a character of XML.
  return std::all_of(wide.begin(), wide.end(), [](wchar_t unit) {
    const auto code = static_cast<char32_t>(unit);
    return (code >= 0xD800 && code < 0xE000) || is_xml_character(code);
  });
}

/// Deciphers a whole script and collects what does not decipher.
class Decipherment {
 public:
  Decipherment(const PlainScript& script, const TextCipher& cipher)
      : script_(script), decipherer_(cipher.engine(), cipher.key()) {}

  [[nodiscard]] PlainScript run() {
    for (PlainElement& element : script_.elements) {
      ++number_;
      where_ = "element " + std::to_string(number_);
      decipher_name(element);
      for (PlainAttribute& attribute : element.attributes) decipher_value(attribute);
    }
    // With the wrong key, or in a plain script, every line would say the same.
    if (!any_deciphered_ && !faults_.empty()) faults_.resize(1);
    if (!faults_.empty()) throw ScriptError(script_.file, std::move(faults_));
    return std::move(script_);
  }

 private:
  void fault(Position at, const std::string& reason) {
    faults_.push_back({at, where_ + ": " + reason, rule::undecipherable});
  }

  void decipher_name(PlainElement& element) {
    if (!decipher(element.at, "its name ", element.name)) return;
    if (is_name(element.name)) {
      where_ += " (" + element.name + ")";
    } else {
      fault(element.at, "its name deciphers to no name");
    }
  }

  void decipher_value(PlainAttribute& attribute) {
    const std::string subject = "attribute \"" + attribute.name + "\" ";
    if (attribute.name == id_attribute) {
      fault(attribute.at, subject + "has no place in an enciphered script");
    } else if (decipher(attribute.at, subject, attribute.value) && !is_xml_text(attribute.value)) {
      fault(attribute.at, subject + "deciphers to a character that XML does not have");
    }
  }

  /// True where `text` became plain.
  [[nodiscard]] bool decipher(Position at, const std::string& subject, std::string& text) {
    const host::Deciphered& deciphered = decipherer_.decipher(base::strings::to_wide(text));
    if (deciphered.fault != nullptr) {
      fault(at, subject + deciphered.fault);
      return false;
    }
    any_deciphered_ = true;
    text = deciphered.plain;
    return true;
  }

  PlainScript script_;
  host::Decipherer decipherer_;
  std::vector<Fault> faults_;
  std::string where_;
  std::size_t number_ = 0;
  bool any_deciphered_ = false;
};

std::vector<std::int32_t> indexes_of(const PlainScript& script) {
  std::vector<std::int32_t> indexes;
  std::int32_t previous = -1;
  for (const PlainElement& element : script.elements) {
    const PlainAttribute* const named = element.find("index");
    previous = named != nullptr ? base::strings::to_integer(base::strings::to_wide(named->value).c_str())
                                : static_cast<std::int32_t>(static_cast<std::uint32_t>(previous) + 1);
    indexes.push_back(previous);
  }
  return indexes;
}

std::string id_of(std::int32_t index) {
  return "n" + std::to_string(index);
}

/// Gives ids to the elements that others name. Only a way in plain decimal becomes an id: compiling writes it back so.
void name_targets(PlainScript& script) {
  const std::vector<std::int32_t> indexes = indexes_of(script);
  const std::unordered_set<std::int32_t> present(indexes.begin(), indexes.end());
  const std::int32_t last = indexes.empty() ? -1 : *std::max_element(indexes.begin(), indexes.end());
  std::unordered_set<std::int32_t> named;
  for (PlainElement& element : script.elements) {
    for (PlainAttribute& attribute : element.attributes) {
      const auto number = is_way(attribute.name) ? whole_integer(attribute.value) : std::nullopt;
      if (!number.has_value() || *number < 0 || std::to_string(*number) != attribute.value) continue;
      if (present.contains(*number)) {
        named.insert(*number);
        attribute.value = '#' + id_of(*number);
      } else if (*number - 1 == last) {
        attribute.value = '#' + std::string(end_id);
      }
    }
  }
  for (std::size_t i = 0; i < indexes.size(); ++i) {
    if (named.erase(indexes[i]) == 0) continue;
    std::vector<PlainAttribute>& attributes = script.elements[i].attributes;
    attributes.insert(attributes.begin(), {std::string(id_attribute), id_of(indexes[i]), {}});
  }
}

std::string escaped(std::string_view value) {
  std::string out;
  for (const char c : value) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\t':
      case '\n':
      case '\r':
        // As they stand they would be read as blanks.
        out += "&#" + std::to_string(static_cast<int>(c)) + ';';
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace

std::string decompile(const PlainScript& enciphered, const TextCipher& cipher) {
  PlainScript script = Decipherment(enciphered, cipher).run();
  name_targets(script);
  std::string text = "<install version=\"1.0\">\n    <commands>\n";
  for (const PlainElement& element : script.elements) {
    text += "        <" + element.name;
    for (const PlainAttribute& attribute : element.attributes) {
      text += ' ' + attribute.name + "=\"" + escaped(attribute.value) + '"';
    }
    text += "/>\n";
  }
  return text + "    </commands>\n</install>\n";
}

}  // namespace script
