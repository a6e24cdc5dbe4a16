#include "platform/machine/driver_store.h"

#include <algorithm>
#include <string>

#include "platform/machine/file_lookup.h"
#include "platform/machine/programs.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;

namespace {

[[nodiscard]] std::wstring inf_folder(const State& state) {
  return state.environment.windows + L"\\INF";
}

// A name, or a full path, of a file in the folder of INF files.
[[nodiscard]] Found find_inf(const State& state, std::wstring_view inf) {
  const ParsedPath parsed = parse_path(inf, inf_folder(state));
  return parsed.error != code::success ? Found{parsed.error, 0, {}}
                                       : look_up(state.files, parsed.path, LastLink::followed);
}

}  // namespace

bool DriverStore::inf_location(const wchar_t* inf, std::span<wchar_t> into, std::uint32_t& required) {
  const ports::Lock lock(world_.mutex);
  const Found found = find_inf(world_.state, inf == nullptr ? L"" : inf);
  if (found.error != code::success) {
    errors_.set_last(found.error);
    return false;
  }
  const std::wstring& store = world_.state.files.nodes.at(found.node).store;
  if (store.empty()) {
    errors_.set_last(code::not_found);
    return false;
  }
  required = static_cast<std::uint32_t>(store.size() + 1);
  if (into.size() < required) {
    errors_.set_last(code::insufficient_buffer);
    return false;
  }
  std::copy_n(store.c_str(), required, into.begin());
  return true;
}

void remove_driver(State& state, std::wstring_view inf) {
  const Found found = find_inf(state, inf);
  if (found.error != code::success) return;
  const std::wstring store = state.files.nodes.at(found.node).store;
  if (store.empty()) return;
  Effect effect;
  effect.kind = EffectKind::delete_file;
  effect.path = path_of(state.files, found.node);
  apply(state, effect);
  effect.kind = EffectKind::delete_folder;
  effect.path = store.substr(0, store.find_last_of(L'\\'));
  apply(state, effect);
}

std::wstring_view last_argument(std::wstring_view command_line) {
  constexpr std::wstring_view around = L" \t\"";
  const std::size_t end = command_line.find_last_not_of(around);
  if (end == std::wstring_view::npos) return {};
  const std::size_t before = command_line.find_last_of(around, end);
  return command_line.substr(before == std::wstring_view::npos ? 0 : before + 1, end - before);
}

}  // namespace machine
