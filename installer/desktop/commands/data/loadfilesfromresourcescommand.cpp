#include "installer/desktop/commands/data/loadfilesfromresourcescommand.h"

#include <algorithm>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/utils/base/resources/resource_text.h"
#include "installer/utils/base/strings/number.h"

namespace ky {

std::uint32_t CLoadFilesFromResourcesCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  std::int32_t count = 0;
  if (const ports::Result failure = attributes.Length(count); failure != 0) return static_cast<std::uint32_t>(failure);
  // The bound counts every attribute of the element, so it is always high enough.
  for (std::int32_t n = 1; n < count; ++n) {
    const std::wstring number = std::to_wstring(n);
    const auto id = attributes.ReadAttribute((L"resourceID" + number).c_str());
    std::wstring name;
    if (!id) continue;
    const std::int32_t parsed = base::strings::to_integer(DecipherOrStop(decrypter, id->c_str()));
    if (attributes.ReadCipheredAttribute(decrypter, (L"outResource" + number).c_str(), name) != 0) continue;
    resources.emplace_back(parsed, std::move(name));
  }
  static_cast<void>(attributes.ReadCipheredAttribute(decrypter, L"error", error));
  return ports::code::success;
}

std::uint32_t CLoadFilesFromResourcesCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!guard.TryEnter()) {
    LogStream() << index << L": LoadFilesFromResources Error: Multiple threads attempting execution.";
    return ports::code::internal_error;
  }
  const GuardLeaver leaver(guard);
  LogStream() << index << L": LoadFilesFromResources Begin execute.";
  LoadAll();
  executed = true;
  LogStream() << index << L": LoadFilesFromResources End execute. Next command " << GetNextIndex();
  return ports::code::success;
}

void CLoadFilesFromResourcesCommand::LoadAll() const {
  const bool all = std::all_of(resources.begin(), resources.end(),
                               [this](const auto& pair) { return LoadOne(pair.first, pair.second); });
  if (all || error.empty()) return;
  Put(IntKey(NarrowedByUnit(error)), static_cast<std::int32_t>(ports::code::internal_error));
}

bool CLoadFilesFromResourcesCommand::LoadOne(std::int32_t id, const std::wstring& name) const {
  const auto text = res::ReadResourceText(static_cast<std::uint16_t>(id));
  if (!text) {
    LogStream() << index << L": not a valid xml in resources";
    return false;
  }
  LogStream() << index << L": resource='" << id << L"' loaded in '" << name << L"'";
  Put(StringKey(NarrowedByUnit(name)), new CString(text->c_str()));
  return true;
}

}  // namespace ky
