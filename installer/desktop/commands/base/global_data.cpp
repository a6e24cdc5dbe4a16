#include "installer/desktop/commands/base/global_data.h"

namespace ky {

namespace {
constinit GetFunction bound_get = nullptr;
constinit PutFunction bound_put = nullptr;
}  // namespace

void BindStore(GetFunction get, PutFunction put) {
  bound_get = get;
  bound_put = put;
}

std::uint64_t GetStored(const char* key) {
  return bound_get(key);
}

void PutStored(const char* key, std::uint64_t value) {
  bound_put(key, value);
}

std::string NarrowedByUnit(std::wstring_view name) {
  std::string out;
  out.reserve(name.size());
  for (const wchar_t unit : name) out.push_back(static_cast<char>(static_cast<unsigned char>(unit & 0xFF)));
  return out;
}

}  // namespace ky
