#include "platform/machine/handles.h"

namespace machine {

ports::Handle HandleTable::open(std::shared_ptr<Object> object) {
  const ports::Lock lock(mutex_);
  last_ += 4;
  const ports::Handle handle{last_};
  objects_.emplace(handle, std::move(object));
  return handle;
}

std::shared_ptr<Object> HandleTable::find(ports::Handle handle) const {
  const ports::Lock lock(mutex_);
  const auto found = objects_.find(handle);
  return found == objects_.end() ? nullptr : found->second;
}

std::shared_ptr<Object> HandleTable::close(ports::Handle handle) {
  const ports::Lock lock(mutex_);
  auto node = objects_.extract(handle);
  return node.empty() ? nullptr : std::move(node.mapped());
}

std::map<ObjectKind, std::size_t> HandleTable::open_by_kind() const {
  const ports::Lock lock(mutex_);
  std::map<ObjectKind, std::size_t> counts;
  for (const auto& [handle, object] : objects_) ++counts[object->kind()];
  return counts;
}

}  // namespace machine
