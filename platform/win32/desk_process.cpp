#include "platform/desk/process.h"

#include <io.h>
#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <memory>

#include "installer/utils/base/strings/utf8.h"
#include "platform/win32/library_search.h"

bool desk::restrict_library_search() {
  return win32::restrict_library_search();
}

std::vector<std::string> desk::arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> values(CommandLineToArgvW(GetCommandLineW(), &count),
                                                               &LocalFree);
  std::vector<std::string> result;
  for (int i = 1; values != nullptr && i < count; ++i) result.push_back(base::strings::to_utf8(values.get()[i]));
  return result;
}

bool desk::is_terminal() {
  return _isatty(_fileno(stderr)) != 0;
}
