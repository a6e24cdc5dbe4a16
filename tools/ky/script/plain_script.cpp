#include "tools/ky/script/plain_script.h"

#include <algorithm>
#include <utility>

#include "tools/ky/script/xml_cursor.h"

namespace script {

namespace {

/// Reads the document from front to back; what is wrong in content is refused where it stands.
class Reader {
 public:
  Reader(std::string file, std::string_view utf8) : file_(file), cursor_(std::move(file), utf8) {}

  [[nodiscard]] PlainScript read() {
    declaration();
    cursor_.skip_between();
    refuse_other_markup();
    PlainElement root;
    const bool root_is_empty = open_tag(root);
    check_root(root);
    if (root_is_empty) cursor_.fail_at(root.at, "<install> does not hold <commands>");

    PlainScript script{file_, {}};
    commands(script);
    close("install", "<install> may hold nothing but one <commands>");
    cursor_.skip_between();
    if (!cursor_.at_end()) cursor_.fail("nothing may follow </install>");
    return script;
  }

 private:
  void declaration() {
    if (!cursor_.take("<?xml")) return;
    PlainElement declared{"?xml", attributes(), {}};
    cursor_.expect("?>");
    for (const PlainAttribute& attribute : declared.attributes) {
      std::string lower = attribute.value;
      for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
      if (attribute.name == "encoding" ? lower != "utf-8" : attribute.name == "version" && lower != "1.0") {
        cursor_.fail_at(attribute.at, "the document must be XML 1.0 in UTF-8");
      }
    }
  }

  void refuse_other_markup() {
    const Position at = cursor_.here();
    if (cursor_.take("<!")) cursor_.fail_at(at, "a document type or a CDATA section has no place in a script");
    if (cursor_.take("<?")) cursor_.fail_at(at, "a processing instruction has no place in a script");
  }

  void check_root(const PlainElement& root) {
    if (root.name != "install") cursor_.fail_at(root.at, "the root is <" + root.name + "> and must be <install>");
    const PlainAttribute* const version = root.find("version");
    if (version == nullptr) cursor_.fail_at(root.at, "<install> lacks the attribute \"version\"");
    if (version->value != "1.0") {
      cursor_.fail_at(version->at, "the version is \"" + version->value + "\" and must be \"1.0\"");
    }
    for (const PlainAttribute& attribute : root.attributes) {
      if (attribute.name != "version" && attribute.name != "xmlns:xsi" &&
          attribute.name != "xsi:noNamespaceSchemaLocation") {
        cursor_.fail_at(attribute.at, "the attribute \"" + attribute.name + "\" has no place on <install>");
      }
    }
  }

  void commands(PlainScript& script) {
    cursor_.skip_between();
    refuse_other_markup();
    if (cursor_.comes("</")) cursor_.fail("<install> does not hold <commands>");
    PlainElement commands;
    const bool empty = open_tag(commands);
    if (commands.name != "commands") {
      cursor_.fail_at(commands.at, "<install> holds <" + commands.name + "> and must hold <commands>");
    }
    if (!commands.attributes.empty()) {
      cursor_.fail_at(commands.attributes.front().at, "<commands> may have no attributes");
    }
    if (empty) return;
    std::vector<PlainComment> comments;
    for (cursor_.skip_between(&comments); !close_tag("commands"); cursor_.skip_between(&comments)) {
      refuse_other_markup();
      script.elements.push_back(command());
      script.elements.back().comments = std::exchange(comments, {});
    }
  }

  [[nodiscard]] PlainElement command() {
    PlainElement element;
    const bool empty = open_tag(element);
    if (element.name.find(':') != std::string::npos) {
      cursor_.fail_at(element.at, "<" + element.name + "> has a prefix, and a command's name has none");
    }
    for (const PlainAttribute& attribute : element.attributes) {
      if (attribute.name == "xmlns" || attribute.name.find(':') != std::string::npos) {
        cursor_.fail_at(attribute.at, "the attribute \"" + attribute.name + "\" has no place on a command");
      }
    }
    if (!empty) close(element.name, "a command holds no text and no other element");
    return element;
  }

  /// An opening tag; true where it closes itself.
  [[nodiscard]] bool open_tag(PlainElement& element) {
    element.at = cursor_.here();
    if (cursor_.at_end()) cursor_.fail("the text ends where an element is missing");
    if (!cursor_.take("<")) cursor_.fail("only elements may stand here, no text");
    element.name = cursor_.name();
    element.attributes = attributes();
    if (cursor_.take("/>")) return true;
    cursor_.expect(">");
    return false;
  }

  [[nodiscard]] std::vector<PlainAttribute> attributes() {
    std::vector<PlainAttribute> all;
    while (true) {
      const bool spaced = cursor_.skip_space();
      if (cursor_.at_end() || cursor_.comes(">") || cursor_.comes("/>") || cursor_.comes("?>")) return all;
      if (!spaced) cursor_.fail("expected a blank, \">\" or \"/>\"");
      PlainAttribute attribute{{}, {}, cursor_.here()};
      attribute.name = cursor_.name();
      cursor_.skip_space();
      cursor_.expect("=");
      cursor_.skip_space();
      attribute.value = cursor_.value();
      if (std::any_of(all.begin(), all.end(),
                      [&](const PlainAttribute& other) { return other.name == attribute.name; })) {
        cursor_.fail_at(attribute.at, "the attribute \"" + attribute.name + "\" stands twice");
      }
      all.push_back(std::move(attribute));
    }
  }

  /// True, and moved behind it, where the closing tag of `name` comes next; another one is refused.
  [[nodiscard]] bool close_tag(std::string_view name) {
    const Position at = cursor_.here();
    if (!cursor_.take("</")) return false;
    const std::string_view closed = cursor_.name();
    if (closed != name) {
      cursor_.fail_at(at, "</" + std::string(closed) + "> stands where </" + std::string(name) + "> must");
    }
    cursor_.skip_space();
    cursor_.expect(">");
    return true;
  }

  void close(std::string_view name, const char* otherwise) {
    cursor_.skip_between();
    if (close_tag(name)) return;
    if (cursor_.at_end()) cursor_.fail("the text ends where </" + std::string(name) + "> is missing");
    cursor_.fail(otherwise);
  }

  std::string file_;
  XmlCursor cursor_;
};

}  // namespace

const PlainAttribute* PlainElement::find(std::string_view attribute) const {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [attribute](const PlainAttribute& each) { return each.name == attribute; });
  return found == attributes.end() ? nullptr : &*found;
}

PlainScript read_plain_script(std::string file, std::string_view utf8) {
  if (utf8.size() > max_script_size) {
    throw ScriptError(file, {{{}, "the script is larger than " + std::to_string(max_script_size) + " bytes"}});
  }
  if (utf8.empty()) throw ScriptError(file, {{{}, "the script is empty"}});
  return Reader(std::move(file), utf8).read();
}

bool is_enciphered(const PlainScript& script) {
  return !script.elements.empty() && script.elements.front().name.starts_with('_');
}

}  // namespace script
