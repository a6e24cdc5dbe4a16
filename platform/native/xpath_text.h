#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace native {

/// An XPath 1.0 expression for pugixml, which knows names with prefixes but no namespaces. Nothing where it uses a
/// prefix other than "xml", since none is bound. With `namespaces` an element's name is made to match only what is in
/// no namespace. Where the expression does not parse, neither does what is given.
[[nodiscard]] std::optional<std::string> xpath_for_pugixml(std::string_view xpath, bool namespaces);

}  // namespace native
