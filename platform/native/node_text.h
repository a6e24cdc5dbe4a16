#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace native {

/// What MSXML gives as the text of a node of a document that drops white space. `source` is the document's text: of
/// white space that was dropped between two texts one blank is left, and the tree does not tell where it was. Without a
/// `source` the texts are joined as they stand. `space_rules` says that `xml:space` is used somewhere.
[[nodiscard]] std::string text_of(pugi::xml_node node, std::string_view source, bool space_rules);

/// Removes the texts of white space alone below `node` that `xml:space` does not protect; `preserving` says whether
/// they count in `node` itself.
void drop_white_space(pugi::xml_node node, bool preserving);

}  // namespace native
