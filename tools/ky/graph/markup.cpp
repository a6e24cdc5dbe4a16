#include "tools/ky/graph/markup.h"

#include <vector>

namespace graph {

namespace {

constexpr std::string_view ellipsis = "\xE2\x80\xA6";
constexpr std::string_view replacement = "\xEF\xBF\xBD";

std::vector<std::string_view> characters_of(std::string_view utf8) {
  std::vector<std::string_view> all;
  for (std::size_t begin = 0; begin < utf8.size();) {
    std::size_t end = begin + 1;
    while (end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0U) == 0x80) ++end;
    all.push_back(utf8.substr(begin, end - begin));
    begin = end;
  }
  return all;
}

std::string put_together(const std::vector<std::string_view>& characters, std::size_t begin, std::size_t end) {
  std::string text;
  for (std::size_t i = begin; i < end; ++i) text += characters[i];
  return text;
}

std::string_view escaped(std::string_view character) {
  if (character == "&") return "&amp;";
  if (character == "<") return "&lt;";
  if (character == ">") return "&gt;";
  if (character == "\"") return "&quot;";
  // The two characters that UTF-8 can hold and XML, which the label is read as, cannot.
  if (character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF") return replacement;
  return character;
}

/// `character` is a control character; of these, texts hold white space alone.
bool is_control(std::string_view character) {
  return static_cast<unsigned char>(character.front()) < 0x20;
}

std::string in_tags(const char* tag, const std::string& markup) {
  if (markup.empty()) return markup;
  return '<' + std::string(tag) + '>' + markup + "</" + tag + '>';
}

}  // namespace

std::string in_label(std::string_view text) {
  std::string out;
  for (const std::string_view character : characters_of(text)) {
    // A backslash begins an escape sequence in a label, "\N" for one.
    out += is_control(character) ? " " : character == "\\" ? "\\\\" : escaped(character);
  }
  return out;
}

std::string in_tooltip(std::string_view text) {
  std::string out;
  for (const std::string_view character : characters_of(text)) {
    // Tooltips are searched for escape sequences once or twice, according to their kind and to Graphviz' version. What
    // parts the backslash from its letter has no width.
    if (character == "\\") {
      out += "\\&#8203;";
    } else if (character == "\n") {
      out += "&#10;";
    } else {
      out += is_control(character) ? " " : escaped(character);
    }
  }
  return out;
}

std::string shortened(std::string_view utf8, std::size_t characters) {
  const std::vector<std::string_view> all = characters_of(utf8);
  if (all.size() <= characters) return std::string(utf8);
  const std::size_t tail = (characters - 1) / 2;
  return put_together(all, 0, characters - 1 - tail) + std::string(ellipsis) +
         put_together(all, all.size() - tail, all.size());
}

std::string beginning_of(std::string_view utf8, std::size_t characters) {
  utf8 = utf8.substr(0, utf8.find(". "));
  if (utf8.ends_with('.')) utf8.remove_suffix(1);
  const std::vector<std::string_view> all = characters_of(utf8);
  if (all.size() <= characters) return put_together(all, 0, all.size());
  return put_together(all, 0, characters - 1) + std::string(ellipsis);
}

std::string coloured(std::string_view colour, const std::string& markup) {
  if (markup.empty()) return markup;
  return "<FONT COLOR=\"" + std::string(colour) + "\">" + markup + "</FONT>";
}

std::string bold(const std::string& markup) {
  return in_tags("B", markup);
}

std::string italic(const std::string& markup) {
  return in_tags("I", markup);
}

}  // namespace graph
