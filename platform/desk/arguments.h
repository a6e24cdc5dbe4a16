#pragma once

#include <string>
#include <vector>

namespace desk {

/// The process's arguments without the program's name, in UTF-8. Takes what `main` was given; the windows build asks
/// the system instead, whose command line alone is whole. Defined in the build's own folder.
[[nodiscard]] std::vector<std::string> arguments(int count, char** values);

}  // namespace desk
