#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/machine/document_sections.h"
#include "platform/machine/file_lookup.h"
#include "platform/ports/codes.h"
#include "platform/ports/inspection.h"

// What runs on the machine, and how it takes it when others deal with it.
namespace machine {

namespace {

namespace right = ports::process_access;

constexpr std::uint32_t longest = 86'400'000;
constexpr std::int64_t first_id = 8;
constexpr std::int64_t last_id = 0x3FFFFFFC;

struct Right {
  const char* name;
  std::uint32_t mask;
};
constexpr std::array<Right, 3> rights = {{{"query", right::query_information | right::vm_read},
                                          {"terminate", right::terminate},
                                          {"synchronize", right::synchronize}}};
struct Hidden {
  const char* name;
  bool Temper::*flag;
};
constexpr std::array<Hidden, 2> hidden = {
    {{"image", &Temper::image_unreadable}, {"parameters", &Temper::parameters_unreadable}}};
struct Moment {
  const char* name;
  GivesWay moment;
};
constexpr std::array<Moment, 3> moments = {{{"snapshot", GivesWay::after_snapshot},
                                            {"image_path", GivesWay::after_image_path},
                                            {"open", GivesWay::after_open}}};

[[noreturn]] void refuse(const JsonNode& node) {
  node.fail("\"" + node.utf8() + "\" is not known here");
}

void read_list(const JsonNode& list, const auto& names, const auto& take) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    const JsonNode node = list.at(i);
    const auto found =
        std::find_if(names.begin(), names.end(), [&node](const auto& entry) { return node.utf8() == entry.name; });
    if (found == names.end()) refuse(node);
    take(*found);
  }
}

[[nodiscard]] picojson::value write_list(const auto& names, const auto& has) {
  picojson::array list;
  for (const auto& entry : names) {
    if (has(entry)) list.emplace_back(std::string(entry.name));
  }
  return picojson::value(list);
}

[[nodiscard]] std::uint32_t read_milliseconds(const JsonNode& node) {
  return static_cast<std::uint32_t>(node.integer(0, longest));
}

[[nodiscard]] std::uint32_t read_id(const JsonNode& node) {
  const auto id = static_cast<std::uint32_t>(node.integer(first_id, last_id));
  if (id % 4 != 0) node.fail("ids are multiples of 4");
  return id;
}

void read_succession(const JsonNode& node, RunningProgram& program) {
  node.only({"after", "to"});
  const JsonNode after = node.member("after");
  for (const Moment& moment : moments) {
    if (after.utf8() == moment.name) program.gives_way = moment.moment;
  }
  if (program.gives_way == GivesWay::never) refuse(after);
  program.successor.push_back(read_process(node.member("to"), ProcessPlace::successor));
}

}  // namespace

void read_temper(const JsonNode& row, Temper& temper) {
  if (const auto after = row.find("closes_after")) temper.closes_after = read_milliseconds(*after);
  temper.hangs = row.flag("hangs");
  if (temper.hangs && row.has("closes_after")) row.fail("what hangs does not close");
  temper.spawns = row.text_or("spawns", L"");
  if (const auto list = row.find("refuses")) {
    read_list(*list, rights, [&temper](const Right& entry) { temper.refuses |= entry.mask; });
  }
  temper.needs_debug_privilege = row.flag("needs_debug_privilege");
  if (const auto list = row.find("unreadable")) {
    read_list(*list, hidden, [&temper](const Hidden& entry) { temper.*entry.flag = true; });
  }
  temper.wow64 = row.flag("wow64");
}

void write_temper(const Temper& temper, picojson::object& row) {
  if (temper.closes_after != 0) row["closes_after"] = json_number(temper.closes_after);
  if (temper.hangs) row["hangs"] = picojson::value(true);
  if (!temper.spawns.empty()) row["spawns"] = json_text(temper.spawns);
  if (temper.refuses != 0) {
    row["refuses"] = write_list(rights, [&](const Right& entry) { return (temper.refuses & entry.mask) != 0; });
  }
  if (temper.needs_debug_privilege) row["needs_debug_privilege"] = picojson::value(true);
  if (temper.image_unreadable || temper.parameters_unreadable) {
    row["unreadable"] = write_list(hidden, [&](const Hidden& entry) { return temper.*entry.flag; });
  }
  if (temper.wow64) row["wow64"] = picojson::value(true);
}

RunningProgram read_process(const JsonNode& row, ProcessPlace place) {
  row.only({"id", "parent", "image", "name", "command_line", "current_folder", "ends_after", "gives_way",
            "closes_after", "hangs", "spawns", "refuses", "needs_debug_privilege", "unreadable", "wow64"});
  RunningProgram program;
  if (const auto id = row.find("id")) {
    if (place != ProcessPlace::list) id->fail("the id of this process is not free to choose");
    program.id = read_id(*id);
  }
  if (const auto parent = row.find("parent")) program.parent = static_cast<std::uint32_t>(parent->integer(0, last_id));
  program.image = read_path_text(row.member("image"));
  program.name = row.text_or("name", L"");
  program.command_line = row.text_or("command_line", L"\"" + program.image + L"\"");
  program.folder = row.text_or("current_folder", program.image.substr(0, program.image.find_last_of(L'\\') + 1));
  if (const auto after = row.find("ends_after")) program.ends_after = read_milliseconds(*after);
  read_temper(row, program.temper);
  if (const auto succession = row.find("gives_way")) read_succession(*succession, program);
  return program;
}

picojson::value write_process(const RunningProgram& program) {
  picojson::object row;
  if (program.id != 0) row["id"] = json_number(program.id);
  if (program.parent != 0) row["parent"] = json_number(program.parent);
  row["image"] = json_text(program.image);
  if (!program.name.empty() && program.name != last_part(program.image)) row["name"] = json_text(program.name);
  row["command_line"] = json_text(program.command_line);
  if (!program.folder.empty()) row["current_folder"] = json_text(program.folder);
  if (program.ends_after) row["ends_after"] = json_number(*program.ends_after);
  write_temper(program.temper, row);
  for (const Moment& moment : moments) {
    if (moment.moment != program.gives_way || program.successor.empty()) continue;
    picojson::object succession;
    succession["after"] = picojson::value(std::string(moment.name));
    succession["to"] = write_process(program.successor.front());
    row["gives_way"] = picojson::value(succession);
  }
  return picojson::value(row);
}

void read_processes(const JsonNode& node, State& state) {
  for (std::size_t i = 0; i < node.size(); ++i) {
    const JsonNode row = node.at(i);
    RunningProgram program = read_process(row, ProcessPlace::list);
    for (const RunningProgram& other : state.processes) {
      if (program.id != 0 && other.id == program.id) row.member("id").fail("this id stands there twice");
    }
    const ParsedPath image = parse_path(program.image, {});
    if (look_up(state.files, image.path, LastLink::followed).error != ports::code::success) {
      row.member("image").fail("there is no such file");
    }
    state.processes.push_back(std::move(program));
  }
}

picojson::value write_processes(const State& state) {
  picojson::array out;
  for (const RunningProgram& program : state.processes) out.push_back(write_process(program));
  return picojson::value(out);
}

}  // namespace machine
