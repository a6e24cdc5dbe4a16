#include "platform/native/node_text.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace native {

namespace {

constexpr std::string_view space = " \t\r\n";

bool is_blank(std::string_view text) {
  return text.find_first_not_of(space) == std::string_view::npos;
}

/// Whether white space counts in `element`, where it does or does not around it.
bool preserves(pugi::xml_node element, bool around) {
  const pugi::xml_attribute attribute = element.attribute("xml:space");
  return attribute ? attribute.value() == std::string_view("preserve") : around;
}

bool preserved(pugi::xml_node node) {
  for (; node; node = node.parent()) {
    if (node.attribute("xml:space")) return preserves(node, false);
  }
  return false;
}

/// A text on its way. What comes out of CDATA is never trimmed: all between the two marks.
struct Gathered {
  std::string text;
  std::size_t first_kept = std::string::npos;
  std::size_t last_kept = 0;
  bool gap = false;  // white space was dropped at its end
};

void append(Gathered& out, const Gathered& piece, bool is_cdata) {
  if (piece.text.empty() && !is_cdata) return;
  if (out.gap && !out.text.empty()) out.text += ' ';
  const std::size_t begin = out.text.size();
  out.text += piece.text;
  if (piece.first_kept != std::string::npos) out.first_kept = std::min(out.first_kept, begin + piece.first_kept);
  if (piece.last_kept != 0) out.last_kept = std::max(out.last_kept, begin + piece.last_kept);
  out.gap = false;
}

// By recursion: a document's levels are bounded.
Gathered gather(pugi::xml_node node, bool preserving) {
  Gathered out;
  for (const pugi::xml_node child : node.children()) {
    const std::string_view value = child.value();
    switch (child.type()) {
      case pugi::node_element: {
        const Gathered inner = gather(child, preserves(child, preserving));
        append(out, inner, false);
        out.gap = out.gap || inner.gap;
        break;
      }
      case pugi::node_pcdata:
        if (!preserving && is_blank(value)) {
          out.gap = true;
        } else {
          append(out, {std::string(value)}, false);
        }
        break;
      case pugi::node_cdata:
        append(out, {std::string(value), 0, value.size()}, true);
        break;
      default:
        break;
    }
  }
  return out;
}

std::string trimmed(const Gathered& gathered) {
  const std::string_view text = gathered.text;
  const std::size_t begin = std::min({text.find_first_not_of(space), gathered.first_kept, text.size()});
  const std::size_t last = text.find_last_not_of(space);
  const std::size_t end = std::max({last == std::string_view::npos ? 0 : last + 1, gathered.last_kept, begin});
  return gathered.text.substr(begin, end - begin);
}

/// The node of `other` that stands where `node` stands, counted by elements: an element, or the document.
pugi::xml_node twin_in(pugi::xml_node other, pugi::xml_node node) {
  std::vector<std::size_t> path;
  for (; node.parent(); node = node.parent()) {
    const auto elements = node.parent().children();
    path.push_back(static_cast<std::size_t>(
        std::count_if(elements.begin(), pugi::xml_node_iterator(node),
                      [](pugi::xml_node sibling) { return sibling.type() == pugi::node_element; })));
  }
  for (auto step = path.rbegin(); step != path.rend(); ++step) {
    std::size_t left = *step;
    other = other.first_child();
    while (other && (other.type() != pugi::node_element || left-- != 0)) other = other.next_sibling();
  }
  return other;
}

}  // namespace

std::string text_of(pugi::xml_node node, std::string_view source, bool space_rules) {
  if (node.type() != pugi::node_element && node.type() != pugi::node_document) {
    const bool whole = node.type() != pugi::node_pcdata || (space_rules && preserved(node.parent()));
    return whole ? node.value() : trimmed({node.value()});
  }
  if (source.empty()) return gather(node, true).text;
  const bool preserving = space_rules && preserved(node);
  const pugi::xml_node child = node.first_child();
  if (!child) return {};
  if (!preserving && child.type() == pugi::node_pcdata && !child.next_sibling()) return trimmed({child.value()});
  pugi::xml_document whole;
  whole.load_buffer(source.data(), source.size(), pugi::parse_default | pugi::parse_ws_pcdata, pugi::encoding_utf8);
  const Gathered gathered = gather(twin_in(whole, node), preserving);
  return preserving ? gathered.text : trimmed(gathered);
}

void drop_white_space(pugi::xml_node node, bool preserving) {
  for (pugi::xml_node child = node.first_child(); child;) {
    const pugi::xml_node next = child.next_sibling();
    if (child.type() == pugi::node_element) {
      drop_white_space(child, preserves(child, preserving));
    } else if (!preserving && child.type() == pugi::node_pcdata && is_blank(child.value())) {
      node.remove_child(child);
    }
    child = next;
  }
}

}  // namespace native
