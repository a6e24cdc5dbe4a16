#include "platform/machine/inspection.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/machine/handles.h"
#include "platform/machine/path.h"
#include "platform/machine/processes.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::Handle;

namespace {

class Snapshot final : public Object {
 public:
  explicit Snapshot(std::vector<ports::ProcessRow> with_rows) : Object(ObjectKind::other), rows(std::move(with_rows)) {}
  const std::vector<ports::ProcessRow> rows;
  std::size_t at = 0;
};

}  // namespace

bool Inspection::fail(ports::ErrorCode error) {
  errors_.set_last(error);
  return false;
}

Handle Inspection::snapshot() {
  const ports::Lock lock(world_.mutex);
  std::vector<ports::ProcessRow> rows = {{L"[System Process]", 0, 0}, {L"System", 4, 0}};
  rows.push_back({std::wstring(last_part(world_.state.environment.program)), processes_.current_id(), 0});
  return handles_.open(std::make_shared<Snapshot>(std::move(rows)));
}

bool Inspection::first(Handle snapshot, ports::ProcessRow& row) {
  const auto found = handles_.find_as<Snapshot>(snapshot);
  if (found == nullptr) return fail(code::invalid_handle);
  found->at = 0;
  row = found->rows.front();
  return true;
}

bool Inspection::next(Handle snapshot, ports::ProcessRow& row) {
  const auto found = handles_.find_as<Snapshot>(snapshot);
  if (found == nullptr) return fail(code::invalid_handle);
  if (found->at + 1 >= found->rows.size()) return fail(code::no_more_files);
  row = found->rows[++found->at];
  return true;
}

Handle Inspection::open(std::uint32_t /*access*/, std::uint32_t /*id*/) {
  errors_.set_last(code::invalid_parameter);
  return Handle::null;
}

bool Inspection::is_wow64(Handle process, bool& out) {
  if (process != current()) return fail(code::invalid_handle);
  out = false;
  return true;
}

std::uint32_t Inspection::image_path(Handle process, std::span<wchar_t> into) {
  if (process != current() || into.empty()) {
    static_cast<void>(fail(code::invalid_handle));
    return 0;
  }
  const ports::Lock lock(world_.mutex);
  const std::wstring& path = world_.state.environment.program;
  const std::size_t length = std::min(path.size(), into.size() - 1);
  std::copy_n(path.begin(), length, into.begin());
  into[length] = 0;
  return static_cast<std::uint32_t>(length);
}

std::uint32_t Inspection::image_device_path(Handle /*process*/, std::span<wchar_t> /*into*/) {
  static_cast<void>(fail(code::invalid_handle));
  return 0;
}

ports::Status Inspection::basic_information(Handle process, ports::ProcessBasicInformation& out,
                                            std::uint32_t& returned) {
  if (process != current()) return ports::status::invalid_handle;
  out = {};
  out.id = processes_.current_id();
  returned = ports::process_basic_information_size;
  return ports::status::success;
}

bool Inspection::read_memory(Handle /*process*/, std::uint64_t /*address*/, std::span<std::uint8_t> /*into*/) {
  return fail(code::invalid_handle);
}

}  // namespace machine
