#include "platform/machine/inspection.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/machine/drives.h"
#include "platform/machine/handles.h"
#include "platform/machine/process_memory.h"
#include "platform/machine/process_table.h"
#include "platform/machine/processes.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
namespace access_right = ports::process_access;
namespace status = ports::status;
using ports::Handle;

namespace {

constexpr std::uint32_t may_query = access_right::query_information | access_right::query_limited_information;
constexpr std::uint32_t may_look_inside = access_right::query_information | access_right::vm_read;
constexpr std::int32_t pending = 0x103;  // the exit status of what has not ended
constexpr std::int32_t normal_priority = 8;

/// What was listed when it was made, and how far it was read.
class Snapshot final : public Object {
 public:
  explicit Snapshot(const std::shared_ptr<ProcessTable>& table)
      : Object(ObjectKind::process_list), rows_(table->rows()), table_(table) {}
  ~Snapshot() override { done(); }

  void rewind() { at_ = 0; }
  [[nodiscard]] bool read(ports::ProcessRow& row) {
    if (at_ < rows_.size()) {
      row = rows_[at_++];
      return true;
    }
    done();
    return false;
  }

 private:
  void done() {
    const auto table = table_.lock();
    if (table != nullptr && !std::exchange(done_, true)) table->snapshot_done(rows_);
  }

  const std::vector<ports::ProcessRow> rows_;
  const std::weak_ptr<ProcessTable> table_;
  std::size_t at_ = 0;
  bool done_ = false;
};

// At most what fits, with its terminator.
[[nodiscard]] std::uint32_t copy_text(const std::wstring& text, std::span<wchar_t> into) {
  const std::size_t length = std::min(text.size(), into.size() - 1);
  std::copy_n(text.begin(), length, into.begin());
  into[length] = 0;
  return static_cast<std::uint32_t>(length);
}

}  // namespace

Inspection::Inspection(World& world, HandleTable& handles, ports::Errors& errors, Processes& processes)
    : world_(world), handles_(handles), errors_(errors), table_(processes.table()) {}

bool Inspection::fail(ports::ErrorCode error) {
  errors_.set_last(error);
  return false;
}

// The value of an invalid handle is here this process's own.
Inspection::Opened Inspection::find(Handle handle) {
  if (handle == current()) return {table_->self(), ProcessHandle::all_access, nullptr};
  const auto found = handles_.find_as<ProcessHandle>(handle);
  if (found == nullptr) return {};
  return {found->process, found->access, found};
}

Handle Inspection::snapshot() {
  return handles_.open(std::make_shared<Snapshot>(table_));
}

bool Inspection::first(Handle snapshot, ports::ProcessRow& row) {
  const auto found = handles_.find_as<Snapshot>(snapshot);
  if (found == nullptr) return fail(code::invalid_handle);
  found->rewind();
  return found->read(row) || fail(code::no_more_files);
}

bool Inspection::next(Handle snapshot, ports::ProcessRow& row) {
  const auto found = handles_.find_as<Snapshot>(snapshot);
  if (found == nullptr) return fail(code::invalid_handle);
  return found->read(row) || fail(code::no_more_files);
}

Handle Inspection::open(std::uint32_t access, std::uint32_t id) {
  std::shared_ptr<RunningProcess> process;
  const ports::ErrorCode error = table_->open(access, id, process);
  if (error != code::success) {
    errors_.set_last(error);
    return Handle::null;
  }
  return handles_.open(std::make_shared<ProcessHandle>(table_, std::move(process), access));
}

bool Inspection::is_wow64(Handle process, bool& out) {
  const Opened opened = find(process);
  if (opened.process == nullptr) return fail(code::invalid_handle);
  if ((opened.access & may_query) == 0) return fail(code::access_denied);
  out = opened.process->program.temper.wow64;
  return true;
}

std::uint32_t Inspection::image_path(Handle process, std::span<wchar_t> into) {
  const Opened opened = find(process);
  ports::ErrorCode error = code::success;
  if (opened.process == nullptr) {
    error = code::invalid_handle;
  } else if ((opened.access & may_look_inside) != may_look_inside || opened.process->program.temper.image_unreadable) {
    error = code::access_denied;
  } else if (into.empty()) {
    error = code::insufficient_buffer;
  } else {
    const ports::Lock lock(world_.mutex);
    if (opened.process->ended) error = code::access_denied;
  }
  if (error != code::success) {
    errors_.set_last(error);
    return 0;
  }
  table_->path_was_read(opened.process);
  return copy_text(opened.process->program.image, into);
}

std::uint32_t Inspection::image_device_path(Handle process, std::span<wchar_t> into) {
  const Opened opened = find(process);
  ports::ErrorCode error = code::success;
  std::wstring path;
  if (opened.process == nullptr) {
    error = code::invalid_handle;
  } else if ((opened.access & may_query) == 0) {
    error = code::access_denied;
  } else {
    const ports::Lock lock(world_.mutex);
    if (opened.process->image != 0) path = device_path_of(world_.state.files, opened.process->image);
    if (opened.process->ended || path.empty()) {
      error = code::gen_failure;
    } else if (path.size() >= into.size()) {
      error = code::insufficient_buffer;
    }
  }
  if (error != code::success) {
    errors_.set_last(error);
    return 0;
  }
  table_->path_was_read(opened.process);
  return copy_text(path, into);
}

ports::Status Inspection::basic_information(Handle process, ports::ProcessBasicInformation& out,
                                            std::uint32_t& returned) {
  const Opened opened = find(process);
  if (opened.process == nullptr) return status::invalid_handle;
  if ((opened.access & may_query) == 0) return status::access_denied;
  const RunningProgram& program = opened.process->program;
  const ports::Lock lock(world_.mutex);
  out.exit_status = opened.process->ended ? static_cast<std::int32_t>(opened.process->exit_code) : pending;
  out.environment_block = environment_block(program.id);
  out.affinity = 1;
  out.base_priority = normal_priority;
  out.id = program.id;
  out.parent_id = program.parent;
  returned = ports::process_basic_information_size;
  return status::success;
}

bool Inspection::read_memory(Handle process, std::uint64_t address, std::span<std::uint8_t> into) {
  const Opened opened = find(process);
  if (opened.process == nullptr) return fail(code::invalid_handle);
  if ((opened.access & access_right::vm_read) == 0) return fail(code::access_denied);
  const RunningProgram& program = opened.process->program;
  {
    const ports::Lock lock(world_.mutex);
    if (opened.process->ended) return fail(code::partial_copy);
  }
  if (program.temper.parameters_unreadable) return fail(code::partial_copy);
  return read_process_memory(program, address, into) || fail(code::partial_copy);
}

}  // namespace machine
