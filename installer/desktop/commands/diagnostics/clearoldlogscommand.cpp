#include "installer/desktop/commands/diagnostics/clearoldlogscommand.h"

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/trace.h"
#include "installer/utils/base/strings/number.h"
#include "platform/ports/codes.h"
#include "platform/ports/environment.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"ClearOldLogsCommand";

/// Closes a search at its end.
class SearchCloser {
 public:
  explicit SearchCloser(ports::Handle search) : search_(search) {}
  ~SearchCloser() { ports::system().files.find_close(search_); }
  SearchCloser(const SearchCloser&) = delete;
  SearchCloser& operator=(const SearchCloser&) = delete;

 private:
  ports::Handle search_;
};

}  // namespace

std::uint32_t CClearOldLogsCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  if (attributes.ReadCipheredAttribute(decrypter, L"maxTimeVar", maxTimeVar) != ports::code::success) {
    maxTimeVar.clear();
  }
  if (attributes.ReadCipheredAttribute(decrypter, L"label", label) == ports::code::success) label.push_back(L'.');
  return ports::code::success;
}

std::uint32_t CClearOldLogsCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!guard.TryEnter()) {
    Trace(L"%i: %s Error: Multiple threads attempting execution.\n", index, log_name);
    return ports::code::internal_error;
  }
  {
    const GuardLeaver leaver(guard);
    Trace(L"%i: %s Begin execute.\n", index, log_name);
    Clear();
    executed = true;
  }
  const std::int32_t following = GetNextIndex();
  Trace(L"%i: %s End execute. Next command %i.\n", index, log_name, following);
  return ports::code::success;
}

void CClearOldLogsCommand::Clear() {
  if (maxTimeVar.empty()) {
    Trace(L"Maximum time string is empty!");
    return;
  }
  const std::int32_t stored = Get(IntKey(NarrowedByUnit(maxTimeVar)));
  if (stored == 0) {
    Trace(L"Maximum time is zero.");
    return;
  }
  limit = stored;
  Trace(L"Max time value is: %ld\n", stored);
  const std::wstring folder = ports::system().environment.folder(ports::KnownFolder::common_app_data);
  if (folder.empty()) {
    Trace(L"Could not get logs folder!");
    return;
  }
  Collect(folder);
}

void CClearOldLogsCommand::Collect(const std::wstring& folder) {
  ports::Files& files = ports::system().files;
  ports::FolderRow row;
  const ports::Handle search = files.find_first((folder + L"\\*.bin").c_str(), row);
  if (search == ports::Handle::invalid) return;
  const SearchCloser closer(search);
  do {
    if ((row.attributes & ports::file_attribute::directory) == 0 && IsOld(row.name)) {
      old_logs.push_back(folder + L"\\" + row.name);
    }
  } while (files.find_next(search, row));
  // Only now, so that the search never sees a folder that it has changed.
  for (const std::wstring& path : old_logs) {
    if (!files.remove(path.c_str())) Trace(L"Log file: '%s' could not be deleted\n", path.c_str());
  }
}

bool CClearOldLogsCommand::IsOld(const std::wstring& name) const {
  if (!name.starts_with(label)) return false;
  const std::size_t digit = name.find_first_of(L"0123456789");
  return digit != std::wstring::npos && limit > base::strings::to_decimal(name.c_str() + digit);
}

}  // namespace ky
