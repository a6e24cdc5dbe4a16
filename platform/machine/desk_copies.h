#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "platform/desk/appended_file.h"
#include "platform/machine/state.h"
#include "platform/ports/mutex.h"

namespace machine {

/// A file of the machine that is written through to the desk.
struct DeskCopy {
  DeskCopy(NodeId of_node, std::string path) : node(of_node), file(std::move(path)) {}

  const NodeId node;
  /// Held while the machine's file grows and its copy after it, so that both grow in the same order. Taken before the
  /// world's.
  ports::Mutex mutex;
  desk::AppendedFile file KY_GUARDED_BY(mutex);
  std::uint64_t size KY_GUARDED_BY(mutex) = 0;
};

/// Copies of some of the machine's files in a folder of the desk, each under its own name. They grow with what is
/// written through them, and go or shrink when the file does, whoever does it.
class DeskCopies {
 public:
  /// Without a folder there are no copies.
  DeskCopies(World& world, std::optional<std::string> folder) : world_(world), folder_(std::move(folder)) {}

  /// The copy of a file, begun at the first call; null where none is wanted.
  [[nodiscard]] std::shared_ptr<DeskCopy> of(NodeId node);

  /// Lets go of what the machine's files have lost. To be called after something went or was emptied.
  void settle();

  /// Empty, or what went wrong first.
  [[nodiscard]] std::string failure();

 private:
  /// False where the machine's file is gone, and its copy with it.
  [[nodiscard]] bool settle(DeskCopy& copy);
  [[nodiscard]] std::map<NodeId, std::shared_ptr<DeskCopy>> all();

  World& world_;
  const std::optional<std::string> folder_;
  std::atomic<bool> any_{false};
  ports::Mutex mutex_;
  std::map<NodeId, std::shared_ptr<DeskCopy>> copies_ KY_GUARDED_BY(mutex_);
};

}  // namespace machine
