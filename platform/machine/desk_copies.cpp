#include "platform/machine/desk_copies.h"

#include <vector>

#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/desk.h"

namespace machine {

std::shared_ptr<DeskCopy> DeskCopies::of(NodeId node) {
  if (!folder_) return nullptr;
  std::vector<std::uint8_t> bytes;
  std::string name;
  {
    const ports::Lock lock(world_.mutex);
    const FileNode& file = world_.state.files.nodes.at(node);
    if (file.places.empty()) return nullptr;
    name = base::strings::to_utf8(file.places.front().name);
    bytes = file.bytes.all();
    bytes.resize(static_cast<std::size_t>(file.size));
  }
  const ports::Lock lock(mutex_);
  const auto known = copies_.find(node);
  if (known != copies_.end()) return known->second;
  auto copy = std::make_shared<DeskCopy>(node, desk::join(*folder_, name));
  {
    const ports::Lock of_copy(copy->mutex);
    copy->file.append(bytes);
    copy->size = bytes.size();
  }
  copies_.emplace(node, copy);
  any_ = true;
  return copy;
}

bool DeskCopies::settle(DeskCopy& copy) {
  const ports::Lock lock(copy.mutex);
  std::optional<std::uint64_t> size;
  {
    const ports::Lock of_world(world_.mutex);
    const auto found = world_.state.files.nodes.find(copy.node);
    if (found != world_.state.files.nodes.end()) size = found->second.size;
  }
  if (!size) {
    copy.file.remove();
    return false;
  }
  if (*size < copy.size) {
    copy.file.cut(*size);
    copy.size = *size;
  }
  return true;
}

void DeskCopies::settle() {
  if (!any_) return;
  for (const auto& [node, copy] : all()) {
    if (settle(*copy)) continue;
    const ports::Lock lock(mutex_);
    copies_.erase(node);
  }
}

std::map<NodeId, std::shared_ptr<DeskCopy>> DeskCopies::all() {
  const ports::Lock lock(mutex_);
  return copies_;
}

std::string DeskCopies::failure() {
  for (const auto& [node, copy] : all()) {
    const ports::Lock lock(copy->mutex);
    if (!copy->file.failure().empty()) return copy->file.failure();
  }
  return {};
}

}  // namespace machine
