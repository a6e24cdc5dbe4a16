#pragma once

#include <string>
#include <vector>

namespace desk {

// What differs from system to system at the start of a program; defined in the build's own folder.

/// Keeps libraries from being found anywhere but in the program's own folder and the system's, where the system lets a
/// program say so. False where that fails.
[[nodiscard]] bool restrict_library_search();

/// The process's arguments without the program's name, in UTF-8. Takes what `main` was given; the windows build asks
/// the system instead, whose command line alone is whole.
[[nodiscard]] std::vector<std::string> arguments(int count, char** values);

/// True where the error stream goes to a terminal.
[[nodiscard]] bool is_terminal();

}  // namespace desk
