#include "tests/attacks/attacked_world.h"

#include <algorithm>
#include <vector>

#include "platform/machine/file_lookup.h"
#include "platform/machine/path.h"
#include "platform/machine/registry_tree.h"

namespace attacks {

namespace {

constexpr wchar_t victim_folder[] = L"C:\\Victim";
constexpr wchar_t victim_key[] = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Victim";

machine::Found found(const machine::FileTree& tree, const std::wstring& path) {
  return machine::look_up(tree, machine::parse_path(path, L"C:\\").path, machine::LastLink::itself);
}

bool lies_in(const std::wstring& path, const std::wstring& folder) {
  return path == folder || path.starts_with(folder + L"\\");
}

}  // namespace

ports::ErrorCode Moments::last() {
  if (const auto due = acts_.find(++passed_); due != acts_.end()) {
    const ports::ErrorCode kept = inner_.last();
    due->second();
    inner_.set_last(kept);
  }
  return inner_.last();
}

support::NamedWorld AttackedWorld::laid_out() {
  support::NamedWorld world;
  for (const std::wstring suite : {L"C:\\Data\\Suite", L"C:\\Victim\\Suite"}) {
    world.file(suite + L"\\a.txt", "a").file(suite + L"\\In\\b.txt", "b").file(suite + L"\\In\\Deep\\c.txt", "c");
  }
  world.node(L"C:\\Victim\\Suite\\a.txt").attributes = ports::file_attribute::read_only;
  world.folder(L"C:\\Aside");
  for (const std::wstring suite :
       {L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Data\\Suite", L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Victim\\Suite",
        L"HKEY_USERS\\S-1-5-21-7\\Software\\Suite", L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Victim\\Software\\Suite"}) {
    for (const wchar_t* below : {L"", L"\\In", L"\\In\\Deep"}) world.value(suite + below, L"Name", L"text");
  }
  return world;
}

AttackedWorld::AttackedWorld(const support::NamedWorld& layout) : CommandWorld(layout.state) {
  ports::unbind();
  ports::bind(watched_.system());
}

std::wstring AttackedWorld::victim() {
  std::vector<std::wstring> rows;
  const machine::State state = world.state();
  for (const auto& [id, node] : state.files.nodes) {
    const std::wstring path = machine::path_of(state.files, id);
    if (!lies_in(path, victim_folder)) continue;
    const std::vector<std::uint8_t> bytes = node.bytes.all();
    rows.push_back(path + L" " + std::to_wstring(machine::reported_attributes(node)) + L" " +
                   std::wstring(bytes.begin(), bytes.end()) + (node.going ? L" going" : L""));
  }
  for (const auto& [id, node] : state.registry.keys) {
    const std::wstring path = machine::key_path(state.registry, id);
    if (!lies_in(path, victim_key)) continue;
    std::wstring row = path;
    for (const auto& [name, value] : node.values) row += L" " + name + L"=" + machine::text_units(value.bytes).c_str();
    rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end());
  std::wstring all;
  for (const std::wstring& row : rows) all += row + L"\n";
  return all;
}

bool AttackedWorld::move_aside(const std::wstring& place) {
  if (inner.files.attributes(place.c_str()) == ports::file_attribute::invalid) return false;
  let_go(place);
  const std::wstring aside = L"C:\\Aside\\" + std::wstring(machine::last_part(place));
  return inner.files.move(place.c_str(), aside.c_str(), 0);
}

void AttackedWorld::symbolic_link(const std::wstring& place, const std::wstring& target) {
  const bool folder = (inner.files.attributes(target.c_str()) & ports::file_attribute::directory) != 0;
  if (!move_aside(place)) return;
  EXPECT_TRUE(inner.files.create_link(place.c_str(), target.c_str(), folder));
}

void AttackedWorld::junction(const std::wstring& place, const std::wstring& target) {
  if (!move_aside(place) || !inner.files.create_folder(place.c_str())) return;
  junction_in_place(place, target);
}

void AttackedWorld::junction_in_place(const std::wstring& place, const std::wstring& target) {
  const machine::State before = world.state();
  const machine::Found there = found(before.files, place);
  if (there.error != 0) return;
  for (const auto& [name, node] : before.files.nodes.at(there.node).children) {
    if (!move_aside(place + L'\\' + name)) return;
  }
  world.change([&](machine::State& state) {
    machine::FileNode& node = state.files.nodes.at(there.node);
    if (node.going) return;
    node.link = machine::LinkKind::junction;
    node.target = target;
  });
}

void AttackedWorld::take_back(const std::wstring& place, const std::wstring&) {
  world.change([&](machine::State& state) {
    const machine::Found there = found(state.files, place);
    if (there.error != 0) return;
    machine::FileNode& node = state.files.nodes.at(there.node);
    node.link = machine::LinkKind::none;
    node.target.clear();
  });
}

void AttackedWorld::hard_link(const std::wstring& place, const std::wstring& target) {
  if (!move_aside(place)) return;
  world.change([&](machine::State& state) {
    const machine::Found to = found(state.files, target);
    machine::add_name(state.files, to.node, found(state.files, place).place);
  });
}

void AttackedWorld::let_go(const std::wstring& place) {
  world.change([&](machine::State& state) {
    const machine::Found there = found(state.files, place);
    if (there.error == 0) machine::drop_holds(state.files, there.node, 0);
  });
}

void AttackedWorld::key_link(const std::wstring& place, const std::wstring& target) {
  world.change([&](machine::State& state) {
    machine::RegistryTree& tree = state.registry;
    const std::size_t end = place.rfind(L'\\');
    const machine::KeyId parent = machine::make_keys(tree, place.substr(0, end));
    const std::wstring name = place.substr(end + 1);
    // What was there stays, under another name: keys may be renamed while they are open.
    if (const machine::KeyId old = machine::subkey(tree, parent, name); old != 0) {
      tree.keys.at(parent).subkeys.erase(name);
      tree.keys.at(old).name = name + L"_aside";
      tree.keys.at(parent).subkeys.emplace(name + L"_aside", old);
    }
    machine::KeyNode& link = tree.keys.at(machine::add_key(tree, parent, name));
    link.link = true;
    link.values[std::wstring(machine::link_value_name)] = {
        ports::RegistryType::link, machine::text_bytes(L"\\REGISTRY\\MACHINE\\" + target, false)};
  });
}

std::uint32_t AttackedWorld::run_under(std::string_view stem, const Attributes& attributes,
                                       std::map<std::size_t, std::function<void()>> acts) {
  const Loaded loaded = load(stem, attributes);
  EXPECT_EQ(loaded.result, 0U);
  const auto handles = world.handles().open_by_kind();
  const std::size_t keys = world.registry().open_keys();
  watch_.start(std::move(acts));
  const std::uint32_t result = loaded.command->Execute(0, 0);
  watch_.stop();
  EXPECT_EQ(world.handles().open_by_kind(), handles) << "a handle was left open";
  EXPECT_EQ(world.registry().open_keys(), keys) << "a key was left open";
  return result;
}

}  // namespace attacks
