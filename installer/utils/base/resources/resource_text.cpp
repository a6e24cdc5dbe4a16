#include "installer/utils/base/resources/resource_text.h"

#include <exception>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "installer/utils/base/strings/string_convert.h"
#include "platform/ports/modules.h"
#include "platform/ports/system.h"

namespace ky::res {

std::optional<std::string_view> document_part(std::string_view bytes) {
  const std::size_t first = bytes.find('<');
  const std::size_t last = bytes.rfind('>');
  if (first == std::string_view::npos || last == std::string_view::npos || last < first) return std::nullopt;
  return bytes.substr(first, last - first + 1);
}

std::string_view resource_bytes(std::uint16_t id) {
  ports::Resources& resources = ports::system().resources;
  const ports::Module module = ports::system().own_module;
  const ports::ResourcePlace place = resources.find(module, id, L"XML");
  if (place == ports::ResourcePlace::null) winapi::raise_last_error("FindResource has failed!");
  const ports::ResourceData data = resources.load(module, place);
  if (data == ports::ResourceData::null) winapi::raise_last_error("::LoadResource has failed!");
  const std::uint32_t size = resources.size(module, place);
  const std::uint8_t* const bytes = resources.lock(data);
  if (bytes == nullptr) return {};
  return {reinterpret_cast<const char*>(bytes), size};
}

std::optional<std::wstring> ReadResourceText(std::uint16_t id) {
  try {
    const std::optional<std::string_view> part = document_part(resource_bytes(id));
    if (!part) return std::nullopt;
    std::wstring text = base::strings::utf8_to_wide(std::string(*part).c_str());
    if (text.empty()) return std::nullopt;
    return text;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace ky::res
