#include "platform/machine/resources.h"

#include <utility>

#include "platform/machine/modules.h"
#include "platform/machine/names.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::ResourceData;
using ports::ResourcePlace;

namespace {
constexpr std::uint8_t nothing = 0;  // what an empty resource begins with
}

void Resources::add(std::wstring_view type, std::uint16_t id, std::vector<std::uint8_t> bytes) {
  const ports::Lock lock(mutex_);
  entries_.push_back({std::wstring(type), id, std::move(bytes)});
}

ResourcePlace Resources::find(ports::Module module, std::uint16_t id, const wchar_t* type) {
  const ports::Lock lock(mutex_);
  const std::wstring_view wanted = type == nullptr ? L"" : type;
  bool type_known = false;
  // The latest of several counts.
  for (std::size_t i = entries_.size(); module == Modules::library && i > 0; --i) {
    const Entry& entry = entries_[i - 1];
    if (!same_name(entry.type, wanted)) continue;
    if (entry.id == id) return ResourcePlace{i};
    type_known = true;
  }
  const bool bare = module != Modules::library || entries_.empty();
  errors_.set_last(type_known ? code::resource_name_not_found
                              : (bare ? code::resource_data_not_found : code::resource_type_not_found));
  return ResourcePlace::null;
}

ResourceData Resources::load(ports::Module /*module*/, ResourcePlace place) {
  const ports::Lock lock(mutex_);
  const auto number = static_cast<std::uintptr_t>(place);
  if (number >= 1 && number <= entries_.size()) return ResourceData{number};
  errors_.set_last(code::resource_data_not_found);
  return ResourceData::null;
}

std::uint32_t Resources::size(ports::Module /*module*/, ResourcePlace place) {
  const ports::Lock lock(mutex_);
  const auto number = static_cast<std::uintptr_t>(place);
  if (number >= 1 && number <= entries_.size()) return static_cast<std::uint32_t>(entries_[number - 1].bytes.size());
  errors_.set_last(code::resource_data_not_found);
  return 0;
}

const std::uint8_t* Resources::lock(ResourceData data) {
  const ports::Lock lock(mutex_);
  const auto number = static_cast<std::uintptr_t>(data);
  if (number >= 1 && number <= entries_.size()) {
    const std::vector<std::uint8_t>& bytes = entries_[number - 1].bytes;
    return bytes.empty() ? &nothing : bytes.data();
  }
  errors_.set_last(code::invalid_handle);
  return nullptr;
}

}  // namespace machine
