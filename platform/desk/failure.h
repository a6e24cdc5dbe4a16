#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace desk {

/// The line that tells of a failed operation: the path, what cannot be done, and the reason, for the usual ones in the
/// same words on every system.
[[nodiscard]] std::string failure(const std::string& path, std::string_view what, const std::error_code& error);

}  // namespace desk
