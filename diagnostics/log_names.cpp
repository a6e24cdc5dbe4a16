#include "diagnostics/log_names.h"

#include "diagnostics/log_format.h"
#include "installer/utils/base/strings/bounded.h"
#include "installer/utils/base/strings/format.h"
#include "platform/ports/environment.h"
#include "platform/ports/system.h"

namespace diagnostics {

namespace {

using base::strings::format;

std::wstring bounded_name(std::wstring name) {
  return base::strings::bounded(std::move(name), log_format::name_room, L"log: file name too long");
}

const wchar_t* suffix(const LogRun& run) {
  return run.sealed ? log_format::sealed_suffix : L"";
}

}  // namespace

std::wstring thread_file_name(const LogRun& run, std::uint32_t thread) {
  return bounded_name(
      format(log_format::thread_file_name, std::wstring(run.label).c_str(), run.start, thread, suffix(run)));
}

std::wstring merged_file_name(const LogRun& run, std::wstring_view tag) {
  std::wstring head(run.label);
  if (!head.empty()) head += tag;
  return bounded_name(format(log_format::merged_file_name, head.c_str(), run.start, suffix(run)));
}

std::wstring log_path(const std::wstring& name) {
  std::wstring path = ports::system().environment.folder(ports::KnownFolder::common_app_data);
  if (path.empty()) return path;
  path.append(L"\\").append(name);
  return path.size() < log_format::path_room ? path : std::wstring();
}

}  // namespace diagnostics
