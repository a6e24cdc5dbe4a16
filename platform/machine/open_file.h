#pragma once

#include <cstdint>

#include "platform/machine/file_tree.h"
#include "platform/machine/handles.h"

namespace machine {

class DeskCopies;
struct World;

/// A file behind a handle: gives its hold back at the end.
class OpenFile final : public Object {
 public:
  OpenFile(World& world, DeskCopies& copies, NodeId node, FilePlace place, std::uint32_t access, std::uint64_t owner);
  ~OpenFile() override;

  World& world;
  DeskCopies& copies;
  const NodeId node;
  const FilePlace place;       // by which name it was opened
  const std::uint32_t access;  // mapped rights
  const std::uint64_t owner;
  std::uint64_t position = 0;  // under the world's lock, like the next
  bool listed = false;         // a folder whose rows were all given
};

}  // namespace machine
