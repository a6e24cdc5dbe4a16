#include "platform/record/recording_inspection.h"

#include <string>

namespace record {

bool RecordingInspection::first(ports::Handle snapshot, ports::ProcessRow& row) {
  if (!inner_.first(snapshot, row)) return false;
  book_.listed(row);
  return true;
}

bool RecordingInspection::next(ports::Handle snapshot, ports::ProcessRow& row) {
  if (!inner_.next(snapshot, row)) return false;
  book_.listed(row);
  return true;
}

ports::Handle RecordingInspection::open(std::uint32_t access, std::uint32_t id) {
  const ports::Handle process = inner_.open(access, id);
  if (ledger_.paused()) return process;
  const KeptError kept(errors_);
  book_.opened(access, id, process, process == ports::Handle::null ? errors_.last() : 0);
  if (process == ports::Handle::null) return process;
  if (std::wstring name = book_.called(process); !name.empty()) ledger_.name(process, std::move(name));
  return process;
}

std::uint32_t RecordingInspection::note_path(ports::Handle process, std::span<wchar_t> into, std::uint32_t length) {
  const KeptError kept(errors_);
  book_.path_read(process, length == 0 ? std::wstring() : std::wstring(into.data(), length),
                  length == 0 ? errors_.last() : 0);
  return length;
}

std::uint32_t RecordingInspection::image_path(ports::Handle process, std::span<wchar_t> into) {
  return note_path(process, into, inner_.image_path(process, into));
}

std::uint32_t RecordingInspection::image_device_path(ports::Handle process, std::span<wchar_t> into) {
  return note_path(process, into, inner_.image_device_path(process, into));
}

ports::Status RecordingInspection::basic_information(ports::Handle process, ports::ProcessBasicInformation& out,
                                                     std::uint32_t& returned) {
  const ports::Status status = inner_.basic_information(process, out, returned);
  if (process == inner_.current() && status >= 0) book_.parent_told(static_cast<std::uint32_t>(out.parent_id));
  return status;
}

}  // namespace record
