#include "installer/desktop/commands/registry/ifeo_list.h"

#include <algorithm>

namespace ky {

std::vector<std::wstring> IfeoExecutables(std::wstring_view list) {
  std::vector<std::wstring> names;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(L';'), list.size());
    names.emplace_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return names;
}

std::wstring IfeoKey(std::wstring_view executable) {
  return std::wstring(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options\\")
      .append(executable)
      .append(L".exe");
}

}  // namespace ky
