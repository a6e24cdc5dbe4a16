#include "platform/machine/log_streams.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/machine/file_rules.h"
#include "platform/machine/files.h"
#include "platform/machine/handles.h"
#include "platform/machine/open_file.h"

namespace machine {

using ports::Handle;
using ports::LogMode;
using ports::LogStream;

/// What a `LogStream` points at.
struct LogStreamObject {
  Handle handle = Handle::null;
  std::shared_ptr<OpenFile> file;
  std::shared_ptr<DeskCopy> copy;  // null where none is wanted
  ports::Mutex mutex;
  std::vector<std::uint8_t> waiting KY_GUARDED_BY(mutex);  // written, not yet flushed
};

namespace {

[[nodiscard]] LogStreamObject& object(LogStream stream) {
  return *reinterpret_cast<LogStreamObject*>(stream);
}

struct OpenMode {
  std::uint32_t access;
  ports::Disposition disposition;
};

// What the C runtime asks the system for.
[[nodiscard]] OpenMode decide_mode(LogMode mode) {
  switch (mode) {
    case LogMode::append:
      return {ports::file_access::generic_read | ports::file_access::generic_write, ports::Disposition::open_always};
    case LogMode::write:
      return {ports::file_access::generic_write, ports::Disposition::create_always};
    case LogMode::read:
      break;
  }
  return {ports::file_access::generic_read, ports::Disposition::open_existing};
}

/// Appends to the machine's file; false where its drive is full.
[[nodiscard]] bool grow(World& world, NodeId id, std::span<const std::uint8_t> bytes) {
  const ports::Lock lock(world.mutex);
  FileTree& tree = world.state.files;
  FileNode& node = tree.nodes.at(id);
  const std::uint64_t begin = node.size;
  if (!resize(tree, id, begin + bytes.size())) return false;
  node.bytes.write(static_cast<std::size_t>(begin), bytes);
  spoil_signature(node);
  return true;
}

[[nodiscard]] bool grow_both(World& world, DeskCopy& copy, std::span<const std::uint8_t> bytes) {
  const ports::Lock lock(copy.mutex);
  if (!grow(world, copy.node, bytes)) return false;
  copy.file.append(bytes);
  copy.size += bytes.size();
  return true;
}

}  // namespace

LogStreams::LogStreams(World& world, Files& files, HandleTable& handles, DeskCopies& copies)
    : world_(world), files_(files), handles_(handles), copies_(copies) {}

LogStreams::~LogStreams() = default;

LogStream LogStreams::open(const wchar_t* path, LogMode mode) {
  const OpenMode how = decide_mode(mode);
  auto made = std::make_unique<LogStreamObject>();
  made->handle = files_.open(path, how.access, ports::file_share::read | ports::file_share::write, how.disposition, 0);
  if (made->handle == Handle::invalid) return LogStream::null;
  made->file = handles_.find_as<OpenFile>(made->handle);
  if (mode != LogMode::read) made->copy = copies_.of(made->file->node);
  const LogStream stream{reinterpret_cast<std::uintptr_t>(made.get())};
  const ports::Lock lock(mutex_);
  open_.emplace(stream, std::move(made));
  return stream;
}

std::uint64_t LogStreams::length(LogStream stream) {
  const ports::Lock lock(world_.mutex);
  return world_.state.files.nodes.at(object(stream).file->node).size;
}

std::size_t LogStreams::write(LogStream stream, std::span<const std::uint8_t> bytes) {
  LogStreamObject& to = object(stream);
  if ((to.file->access & file_right::write_data) == 0) return 0;
  const ports::Lock lock(to.mutex);
  to.waiting.insert(to.waiting.end(), bytes.begin(), bytes.end());
  return bytes.size();
}

bool LogStreams::flush(LogStream stream) {
  LogStreamObject& of = object(stream);
  const ports::Lock lock(of.mutex);
  if (of.waiting.empty()) return true;
  const bool done =
      of.copy != nullptr ? grow_both(world_, *of.copy, of.waiting) : grow(world_, of.file->node, of.waiting);
  // As in the C runtime, what could not be written is lost.
  of.waiting.clear();
  return done;
}

std::size_t LogStreams::read(LogStream stream, std::span<std::uint8_t> into) {
  std::uint32_t got = 0;
  return files_.read(object(stream).handle, into, got) ? got : 0;
}

bool LogStreams::skip(LogStream stream, std::uint32_t bytes) {
  const ports::Lock lock(world_.mutex);
  object(stream).file->position += bytes;
  return true;
}

void LogStreams::close(LogStream stream) {
  if (stream == LogStream::null) return;
  flush(stream);
  std::unique_ptr<LogStreamObject> closed;
  {
    const ports::Lock lock(mutex_);
    auto node = open_.extract(stream);
    if (node.empty()) return;
    closed = std::move(node.mapped());
  }
  closed->file.reset();
  handles_.close(closed->handle);
}

}  // namespace machine
