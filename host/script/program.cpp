#include "host/script/program.h"

#include <algorithm>
#include <utility>

namespace host {

void Program::reserve(std::size_t count) {
  steps_.reserve(count);
  positions_.reserve(count);
}

bool Program::add(ProgramStep step) {
  if (!positions_.emplace(step.index, steps_.size()).second) return false;
  last_index_ = std::max(last_index_, step.index);
  steps_.push_back(std::move(step));
  return true;
}

std::optional<std::size_t> Program::find(std::int32_t index) const {
  const auto found = positions_.find(index);
  if (found == positions_.end()) return std::nullopt;
  return found->second;
}

}  // namespace host
