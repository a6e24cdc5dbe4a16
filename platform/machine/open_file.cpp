#include "platform/machine/open_file.h"

#include <utility>

#include "platform/machine/desk_copies.h"
#include "platform/machine/state.h"

namespace machine {

OpenFile::OpenFile(World& of_world, DeskCopies& with_copies, NodeId of_node, FilePlace by_place,
                   std::uint32_t with_access, std::uint64_t with_owner)
    : Object(ObjectKind::file),
      world(of_world),
      copies(with_copies),
      node(of_node),
      place(std::move(by_place)),
      access(with_access),
      owner(with_owner) {}

OpenFile::~OpenFile() {
  {
    const ports::Lock lock(world.mutex);
    drop_holds(world.state.files, node, owner);
  }
  copies.settle();
}

}  // namespace machine
