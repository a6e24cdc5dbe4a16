#include "installer/desktop/commands/hives/user_hives.h"

#include <algorithm>
#include <iterator>

namespace ky {

std::wstring MountName(std::wstring_view sid) {
  return std::wstring(sid).append(hive_marker);
}

bool IsMountName(std::wstring_view name) {
  return name.rfind(hive_marker) != std::wstring_view::npos;
}

bool IsPersonsProfile(std::wstring_view name) {
  constexpr std::wstring_view accounts[] = {L"S-1-5-18", L"S-1-5-19", L"S-1-5-20"};
  return std::find(std::begin(accounts), std::end(accounts), name) == std::end(accounts) &&
         name.find(L".bak") == std::wstring_view::npos;
}

}  // namespace ky
