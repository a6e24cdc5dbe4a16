#include "installer/desktop/commands/base/expand.h"

#include <string_view>
#include <utility>

#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/heap_string.h"
#include "installer/utils/base/strings/expand.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"
#include "platform/ports/termination.h"

namespace ky {

std::uint32_t ExpandVariables(const std::wstring& in, std::wstring& out) {
  std::wstring text = in;
  std::string key;
  const auto value_of = [&key](std::wstring_view name) -> const wchar_t* {
    key.assign(string_prefix);
    for (const wchar_t unit : name) key.push_back(static_cast<char>(static_cast<unsigned char>(unit & 0xFF)));
    const CString* const found = Get(Key<CString*>{key.c_str()});
    return found == nullptr ? nullptr : found->value;
  };
  const auto step = [] { ports::system().termination.step(); };
  if (!base::strings::expand_in_place(text, value_of, step)) return ports::code::gen_failure;
  out = std::move(text);
  return ports::code::success;
}

std::int32_t ExpandToNew(const wchar_t* in, wchar_t** out) {
  if (in == nullptr || out == nullptr) return 0;
  std::wstring text;
  if (ExpandVariables(in, text) != ports::code::success) return 0;
  *out = DuplicateString<wchar_t>(text).release();
  return 1;
}

}  // namespace ky
