#pragma once

#include <string>
#include <vector>

namespace reference {

/// A file that is made from the schema of commands.
struct GeneratedFile {
  std::string path;  // from the repository's root, with "/"
  std::string bytes;
};

/// The folder in which every file is generated.
inline constexpr char pages_folder[] = "docs/commands";

/// The schema document for editors, the index of commands and a page for each.
[[nodiscard]] std::vector<GeneratedFile> generated_files();

/// Writes them all below `root`, which exists. Gives the empty string, or one line: the path and the reason.
[[nodiscard]] std::string write_generated_files(const std::string& root);

}  // namespace reference
