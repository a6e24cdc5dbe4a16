#include "host/commands/setprogresscommand.h"

#include "host/commands/attribute_reader.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "ky/keys.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace host {

std::uint32_t CSetProgressCommand::LoadCiphered(ky::AttributeMap** map) {
  const AttributeReader reader(map);
  if (const std::uint32_t failure = reader.load_base(*this); failure != 0) return failure;
  value = reader.integer(L"value");
  max = reader.integer(L"max");
  return value || max ? ports::code::success : ports::code::invalid_parameter;
}

std::uint32_t CSetProgressCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return ky::InStandardShape(*this, guard, L"SetProgress", [this] { return Show(); });
}

std::uint32_t CSetProgressCommand::Show() const {
  if (max) ky::Put(ky::keys::int_MaxProgressValue, *max);
  if (value) ky::Put(ky::keys::int_CurrentProgressValue, *value);
  const auto refresh = static_cast<ports::Handle>(ky::Get(ky::keys::HANDLE_Refresh));
  if (refresh == ports::Handle::null) return ports::code::success;
  const ports::System& system = ports::system();
  if (!system.waits.set(refresh) || !system.waits.reset(refresh)) return system.errors.last();
  return ports::code::success;
}

}  // namespace host
