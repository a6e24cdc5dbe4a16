#pragma once

#include <string>

#include "host/script/script_key.h"

namespace graph {

/// Draws the script `in`, plain or enciphered with `key`, into `out`: a picture by Graphviz where it ends in ".svg",
/// the text for Graphviz where it ends in ".dot". Throws `BadInput`; `out` is written whole then, or not at all.
/// `program` is the one of Graphviz that reads such a text and writes the picture.
void graph_file(const std::string& in, const host::ScriptKey& key, const std::string& out,
                const std::string& program = "dot");

}  // namespace graph
