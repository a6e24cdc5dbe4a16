#include "installer/desktop/commands/drivers/inf_packages.h"

namespace ky {

bool MayBeAssignedInf(std::wstring_view name) {
  return name.starts_with(L"oem") && name.find_last_of(L".inf") != std::wstring_view::npos;
}

std::wstring_view FileNameOf(std::wstring_view path) {
  const std::size_t separator = path.find_last_of(L"\\/");
  return separator == std::wstring_view::npos ? path : path.substr(separator + 1);
}

std::wstring PnputilLine(std::wstring_view system_folder, std::wstring_view inf) {
  return std::wstring(L"\"").append(system_folder).append(L"pnputil.exe\" -d ").append(inf);
}

bool FitsPnputil(std::wstring_view line) {
  constexpr std::size_t room = 260;
  return line.size() < room;
}

}  // namespace ky
