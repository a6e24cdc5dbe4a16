#include "platform/machine/document.h"

#include <algorithm>
#include <array>

#include "platform/machine/document_sections.h"

namespace machine {

namespace {

struct Section {
  const char* name;
  void (*read)(const JsonNode&, State&);
  picojson::value (*write)(const State&);
};

// In the order of reading: files stand on drives.
constexpr std::array<Section, 9> sections = {{
    {"clock", read_clock, write_clock},
    {"counters", read_counters, write_counters},
    {"environment", read_environment, write_environment},
    {"drives", read_drives, write_drives},
    {"files", read_files, write_files},
    {"registry", read_registry, write_registry},
    {"programs", read_programs, write_programs},
    {"processes", read_processes, write_processes},
    {"pending_moves", read_pending_moves, write_pending_moves},
}};

[[nodiscard]] bool known(const std::string& name) {
  return name == "format" || name == "version" ||
         std::any_of(sections.begin(), sections.end(),
                     [&name](const Section& section) { return section.name == name; });
}

}  // namespace

State read_document(std::string_view text, const std::string& file_name) {
  const picojson::value value = parse_json(text, file_name);
  const JsonNode root(value, file_name);
  if (root.member("format").utf8() != document_format) root.member("format").fail("this is no machine file");
  const std::int64_t version = root.member("version").integer(0, 0xFFFFFFFF);
  if (version != document_version) {
    root.member("version").fail("version " + std::to_string(version) + " is not known, only " +
                                std::to_string(document_version));
  }
  for (const auto& entry : root.object()) {
    if (!known(entry.first)) root.fail("unknown member \"" + entry.first + "\"");
  }
  State state;
  state.clock.milliseconds_since_1970 = default_moment;
  add_volume(state.files, L"C:", default_serial);
  for (const Section& section : sections) {
    if (const auto node = root.find(section.name)) section.read(*node, state);
  }
  return state;
}

std::string write_document(const State& state) {
  picojson::object root;
  root["format"] = picojson::value(std::string(document_format));
  root["version"] = json_number(document_version);
  for (const Section& section : sections) root[section.name] = section.write(state);
  return picojson::value(root).serialize(true);
}

}  // namespace machine
