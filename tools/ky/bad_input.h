#pragma once

#include <stdexcept>

namespace workbench {

/// Input that the workbench refuses: a file that is missing, unreadable or wrong in content. The message is what the
/// user reads: file, place where there is one, and reason; one line for each fault. Ends in exit code 1.
class BadInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace workbench
