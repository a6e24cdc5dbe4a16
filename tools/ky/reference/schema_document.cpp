#include "tools/ky/reference/schema_document.h"

#include "host/script/command_schema.h"
#include "host/script/encipher.h"
#include "tools/ky/reference/wording.h"
#include "tools/ky/reference/xml_writer.h"

namespace reference {

namespace {

using host::AttributeSchema;
using host::CommandSchema;
using host::Form;

constexpr char integer_pattern[] = "[+\\-]?(0[xX][0-9a-fA-F]+|0[0-7]*|[1-9][0-9]*)";

/// Types whose names stand for forms; all other values are plain text of limited length.
std::string_view type_of(Form form) {
  switch (form) {
    case Form::integer:
      return "integer";
    case Form::flag:
      return "flag";
    case Form::index:
      return "index";
    case Form::integer_name:
    case Form::text_name:
    case Form::either_name:
      return "name";
    default:
      return "value";
  }
}

class SchemaDocument {
 public:
  [[nodiscard]] std::string write() {
    out_.comment(generated_note);
    out_.open("xs:schema", {{"xmlns:xs", "http://www.w3.org/2001/XMLSchema"}});
    root();
    types();
    common_attributes();
    for (const CommandSchema& command : host::all_commands()) command_type(command);
    out_.close();
    return std::move(out_).document();
  }

 private:
  void documentation(std::string_view text) {
    out_.open("xs:annotation");
    out_.text("xs:documentation", text);
    out_.close();
  }

  void root() {
    out_.open("xs:element", {{"name", "install"}});
    documentation("A script.");
    out_.open("xs:complexType");
    out_.open("xs:sequence");
    commands();
    out_.close();
    out_.empty("xs:attribute", {{"name", "version"}, {"type", "xs:string"}, {"use", "required"}, {"fixed", "1.0"}});
    out_.close();
    out_.close();
  }

  void commands() {
    out_.open("xs:element", {{"name", "commands"}});
    documentation("The commands, in the order of their indexes unless they say otherwise.");
    out_.open("xs:complexType");
    out_.open("xs:choice", {{"minOccurs", "0"}, {"maxOccurs", "unbounded"}});
    for (const CommandSchema& command : host::all_commands()) command_element(command);
    out_.close();
    out_.close();
    unique("ids", "@id");
    unique("indexes", "@index");
    out_.close();
  }

  void command_element(const CommandSchema& command) {
    out_.open("xs:element", {{"name", command.name}, {"type", command.name}});
    documentation(std::string(command.summary) + "\n\n" + std::string(command.example));
    out_.close();
  }

  void unique(std::string_view name, std::string_view field) {
    out_.open("xs:unique", {{"name", name}});
    out_.empty("xs:selector", {{"xpath", "*"}});
    out_.empty("xs:field", {{"xpath", field}});
    out_.close();
  }

  void types() {
    const std::string longest = std::to_string(host::longest_plain_value);
    text_type("value",
              "Text of at most " + longest + " bytes of UTF-8, which this document can only hold to characters.",
              {{"xs:maxLength", longest}});
    text_type("name", "The name of a variable, without its prefix.",
              {{"xs:minLength", "1"}, {"xs:maxLength", longest}});
    text_type("integer", "An integer of 32 bits; 0x and a leading 0 change the radix as in C.",
              {{"xs:pattern", integer_pattern}});
    text_type("index", "The index of a command, or # and an id; #end is the end of the script.",
              {{"xs:pattern", std::string("#.+|") + integer_pattern}});
    text_type("flag", {}, {{"xs:enumeration", "0"}, {"xs:enumeration", "1"}});
    text_type("id", {}, {{"xs:minLength", "1"}, {"xs:maxLength", longest}});
  }

  using Facets = std::initializer_list<std::pair<std::string_view, std::string_view>>;

  void text_type(std::string_view name, std::string_view text, Facets facets) {
    out_.open("xs:simpleType", {{"name", name}});
    if (!text.empty()) documentation(text);
    out_.open("xs:restriction", {{"base", "xs:string"}});
    for (const auto& [facet, value] : facets) out_.empty(facet, {{"value", value}});
    out_.close();
    out_.close();
  }

  void common_attributes() {
    out_.open("xs:attributeGroup", {{"name", "every-command"}});
    out_.open("xs:attribute", {{"name", "id"}, {"type", "id"}});
    documentation(
        "Names the command for `next` and `target`, which lead to it as #id. It is in the plain script alone.");
    out_.close();
    for (const AttributeSchema& each : host::common_attributes()) attribute(each, each.name);
    out_.close();
  }

  void command_type(const CommandSchema& command) {
    out_.open("xs:complexType", {{"name", command.name}});
    for (const AttributeSchema& each : command.attributes) {
      if (!each.numbered) attribute(each, each.name);
    }
    for (int n = 1; n <= greatest_family_number; ++n) {
      for (const AttributeSchema& each : command.attributes) {
        if (each.numbered) attribute(each, std::string(each.name) + std::to_string(n));
      }
    }
    out_.empty("xs:attributeGroup", {{"ref", "every-command"}});
    out_.close();
  }

  void attribute(const AttributeSchema& each, std::string_view name) {
    const bool own_type = each.longest > 0 || !each.choices.empty();
    out_.open("xs:attribute", {{"name", name},
                               {"type", own_type ? "" : type_of(each.form)},
                               {"use", each.required ? "required" : ""},
                               {"default", each.default_value}});
    std::string text = whole_meaning(each);
    if (each.expanded) text += " [Name] stands for the text variable of that name.";
    documentation(text);
    if (each.longest > 0) {
      out_.open("xs:simpleType");
      out_.open("xs:restriction", {{"base", type_of(each.form)}});
      out_.empty("xs:maxLength", {{"value", std::to_string(each.longest)}});
      out_.close();
      out_.close();
    } else if (own_type) {
      choices(each);
    }
    out_.close();
  }

  /// One of the choices or, where it is expanded, something that may become one.
  void choices(const AttributeSchema& each) {
    out_.open("xs:simpleType");
    out_.open("xs:union");
    out_.open("xs:simpleType");
    out_.open("xs:restriction", {{"base", "xs:string"}});
    for (const std::string_view choice : each.choices) out_.empty("xs:enumeration", {{"value", choice}});
    out_.close();
    out_.close();
    if (each.expanded) {
      out_.open("xs:simpleType");
      out_.open("xs:restriction", {{"base", "value"}});
      out_.empty("xs:pattern", {{"value", ".*\\[.*"}});
      out_.close();
      out_.close();
    }
    out_.close();
    out_.close();
  }

  XmlWriter out_;
};

}  // namespace

std::string schema_document() {
  return SchemaDocument().write();
}

}  // namespace reference
