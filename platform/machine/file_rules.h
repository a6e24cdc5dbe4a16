#pragma once

#include <cstdint>

#include "platform/machine/file_lookup.h"
#include "platform/ports/files.h"

/// What the file system allows, as pure decisions in the system's order of checks.
namespace machine {

/// Single rights that generic ones stand for.
namespace file_right {
inline constexpr std::uint32_t read_data = 0x1;
inline constexpr std::uint32_t write_data = 0x2;
inline constexpr std::uint32_t append_data = 0x4;
inline constexpr std::uint32_t execute = 0x20;
}  // namespace file_right

/// Generic rights replaced by what they stand for.
[[nodiscard]] std::uint32_t mapped_access(std::uint32_t asked);

/// True when the new claim and one that stands exclude each other. Claims on attributes alone never do.
[[nodiscard]] bool excludes(const FileHold& standing, std::uint32_t access, std::uint32_t share);

struct OpenRequest {
  std::uint32_t access = 0;  // as asked
  std::uint32_t share = 0;
  ports::Disposition disposition = ports::Disposition::open_existing;
  std::uint32_t flags = 0;
};
enum class OpenAct { open, create, empty };
struct OpenDecision {
  ports::ErrorCode error = 0;
  OpenAct act = OpenAct::open;
};
[[nodiscard]] OpenDecision decide_open(const FileTree& tree, const Found& found, const OpenRequest& request,
                                       bool folder_wanted);

/// Success, or why the node may not be marked for deletion.
[[nodiscard]] ports::ErrorCode may_go(const FileNode& node);
/// The same for deletion by path; `folder` tells what the caller wants to delete.
[[nodiscard]] ports::ErrorCode decide_removal(const FileTree& tree, const Found& found, bool folder);

/// The attributes that `node` has after `asked` was set; an error for what it cannot have.
struct AttributeDecision {
  ports::ErrorCode error = 0;
  std::uint32_t attributes = 0;
};
[[nodiscard]] AttributeDecision decide_attributes(const FileNode& node, std::uint32_t asked);

/// A move that is done at once.
struct MoveDecision {
  ports::ErrorCode error = 0;
  bool replaces = false;  // what stands at the target goes
  bool copies = false;    // to another volume: a new file with the old one's content
};
[[nodiscard]] MoveDecision decide_move(const FileTree& tree, const Found& from, const Found& to, std::uint32_t flags);
/// The same of what was opened, so that others have been asked already.
[[nodiscard]] MoveDecision decide_rename(const FileTree& tree, const Found& from, const Found& to, std::uint32_t flags);

}  // namespace machine
