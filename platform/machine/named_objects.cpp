#include "platform/machine/named_objects.h"

namespace machine {

NamedObjects::Entry NamedObjects::find_or_add(std::wstring_view name,
                                              const std::function<std::shared_ptr<Object>()>& make) {
  constexpr std::wstring_view local = L"Local\\";
  constexpr std::wstring_view global = L"Global\\";
  if (name.substr(0, local.size()) == local) name.remove_prefix(local.size());
  const bool is_global = name.substr(0, global.size()) == global;
  if (name.find(L'\\', is_global ? global.size() : 0) != std::wstring_view::npos) return {};

  const ports::Lock lock(mutex_);
  std::weak_ptr<Object>& place = objects_[std::wstring(name)];
  if (auto object = place.lock()) return {std::move(object), true};
  auto object = make();
  place = object;
  return {std::move(object), false};
}

}  // namespace machine
