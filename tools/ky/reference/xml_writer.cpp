#include "tools/ky/reference/xml_writer.h"

namespace reference {

namespace {

/// For a text, and for a value between double quotes.
std::string escaped(std::string_view text, bool quoted) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += quoted ? "&quot;" : "\"";
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace

XmlWriter::XmlWriter() : out_("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n") {}

void XmlWriter::open(std::string_view name, Attributes attributes) {
  tag(name, attributes, ">\n");
  opened_.emplace_back(name);
}

void XmlWriter::close() {
  const std::string name = std::move(opened_.back());
  opened_.pop_back();
  indent();
  out_.append("</").append(name).append(">\n");
}

void XmlWriter::empty(std::string_view name, Attributes attributes) {
  tag(name, attributes, "/>\n");
}

void XmlWriter::text(std::string_view name, std::string_view text) {
  tag(name, {}, ">");
  out_.append(escaped(text, false)).append("</").append(name).append(">\n");
}

void XmlWriter::comment(std::string_view text) {
  indent();
  out_.append("<!-- ").append(text).append(" -->\n");
}

void XmlWriter::indent() {
  out_.append(2 * opened_.size(), ' ');
}

void XmlWriter::tag(std::string_view name, Attributes attributes, std::string_view end) {
  indent();
  out_.append(1, '<').append(name);
  for (const auto& [attribute, value] : attributes) {
    if (!value.empty()) out_.append(1, ' ').append(attribute).append("=\"").append(escaped(value, true)).append(1, '"');
  }
  out_.append(end);
}

}  // namespace reference
