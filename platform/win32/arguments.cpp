#include "platform/desk/arguments.h"

#include <windows.h>

#include <shellapi.h>

#include <memory>

#include "installer/utils/base/strings/utf8.h"

std::vector<std::string> desk::arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> values(CommandLineToArgvW(GetCommandLineW(), &count),
                                                               &LocalFree);
  std::vector<std::string> result;
  for (int i = 1; values != nullptr && i < count; ++i) result.push_back(base::strings::to_utf8(values.get()[i]));
  return result;
}
