#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/machine/file_lookup.h"
#include "platform/machine/machine.h"

namespace support {

/// A machine as people have one, laid out piece by piece: C: with Windows, the program and data folders, two users of
/// whom anna is logged on, her temporary folder, and the setup program that the process is. Each step adds to it and
/// gives the world back, so that steps chain. Paths are full; keys start with HKEY_LOCAL_MACHINE or HKEY_USERS.
class NamedWorld {
 public:
  static constexpr const wchar_t* temp = L"C:\\Users\\anna\\AppData\\Local\\Temp";
  static constexpr const wchar_t* setup = L"C:\\Program Files\\Tavrine\\Setup\\kysetup.exe";
  static constexpr const wchar_t* anna = L"S-1-5-21-1004336348-1177238915-682003330-1001";
  static constexpr const wchar_t* bernd = L"S-1-5-21-1004336348-1177238915-682003330-1002";

  NamedWorld() : state(machine::bare_state()) {
    for (const wchar_t* path :
         {L"C:\\Program Files (x86)", L"C:\\Users\\Public\\Desktop", temp, L"C:\\Users\\bernd\\AppData\\Local\\Temp"}) {
      folder(path);
    }
    file(setup, "MZ");
    node(setup).mapped = true;
    state.environment.temp = temp;
    state.environment.program = setup;
    state.environment.command_line = L"\"" + std::wstring(setup) + L"\"";
    state.environment.user = anna;
    for (const wchar_t* user : {anna, bernd}) key(std::wstring(L"HKEY_USERS\\") + user + L"\\Software");
  }

  NamedWorld& folder(std::wstring_view path) {
    machine::make_folders(state.files, parsed(path));
    return *this;
  }

  /// A file, with the folders that it needs.
  NamedWorld& file(std::wstring_view path, std::string_view content = "content", std::uint32_t attributes = 0) {
    machine::Path where = parsed(path);
    const std::wstring name = std::move(where.parts.back());
    where.parts.pop_back();
    machine::FileNode made;
    made.attributes = attributes;
    made.bytes = std::vector<std::uint8_t>(content.begin(), content.end());
    made.size = made.bytes.size();
    machine::add_node(state.files, machine::make_folders(state.files, where), name, std::move(made));
    return *this;
  }

  /// Somebody has the file open and lets others do what `share` says.
  NamedWorld& held(std::wstring_view path, std::uint32_t access, std::uint32_t share) {
    node(path).holds.push_back({access, share, 0});
    return *this;
  }

  NamedWorld& running(std::wstring_view path) {
    node(path).mapped = true;
    return *this;
  }

  NamedWorld& junction(std::wstring_view path, std::wstring_view target) {
    folder(path);
    node(path).link = machine::LinkKind::junction;
    node(path).target = target;
    return *this;
  }

  NamedWorld& key(std::wstring_view path) {
    machine::make_keys(state.registry, path);
    return *this;
  }

  NamedWorld& value(std::wstring_view path, std::wstring_view name, std::wstring_view text) {
    const machine::KeyId at = machine::make_keys(state.registry, path);
    state.registry.keys.at(at).values[std::wstring(name)] = {ports::RegistryType::text, machine::text_bytes(text)};
    return *this;
  }

  /// A program file and how it behaves when it is started.
  NamedWorld& program(std::wstring_view path, std::uint32_t runs, std::uint32_t exit_code) {
    file(path, "MZ");
    machine::Program behaviour;
    behaviour.image = path;
    behaviour.runs = runs;
    behaviour.exit_code = exit_code;
    state.programs.push_back(std::move(behaviour));
    return *this;
  }

  /// A process of a program whose file is made where it is not there yet. It stands until the next one is added.
  machine::RunningProgram& process(std::wstring_view path, std::uint32_t id = 0) {
    if (id_of(path) == 0) file(path, "MZ");
    machine::RunningProgram& made = state.processes.emplace_back();
    made.id = id;
    made.image = path;
    return made;
  }

  /// Started with "/quit", a program asks all processes of its image to close.
  NamedWorld& answers_quit(std::wstring_view image) {
    machine::Program& made = state.programs.emplace_back();
    made.image = image;
    made.arguments = L"/quit";
    made.effects = {{machine::EffectKind::ask_to_close, made.image, {}, {}, {}}};
    return *this;
  }

  /// Something that is there already.
  [[nodiscard]] machine::FileNode& node(std::wstring_view path) { return state.files.nodes.at(id_of(path)); }
  /// 0 where nothing is.
  [[nodiscard]] machine::NodeId id_of(std::wstring_view path) const {
    return machine::look_up(state.files, parsed(path), machine::LastLink::itself).node;
  }

  [[nodiscard]] std::unique_ptr<machine::Machine> make(machine::Options options = {}) const {
    return std::make_unique<machine::Machine>(state, std::move(options));
  }

  machine::State state;

 private:
  [[nodiscard]] static machine::Path parsed(std::wstring_view path) { return machine::parse_path(path, L"C:\\").path; }
};

}  // namespace support
