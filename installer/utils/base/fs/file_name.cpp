#include "installer/utils/base/fs/file_name.h"

namespace base::fs {

const wchar_t* file_name(const wchar_t* path) {
  const wchar_t* name = path;
  for (const wchar_t* at = path; *at != L'\0'; ++at) {
    const bool separator = *at == L'\\' || *at == L'/' || *at == L':';
    const wchar_t following = at[1];
    if (separator && following != L'\0' && following != L'\\' && following != L'/') name = at + 1;
  }
  return name;
}

}  // namespace base::fs
