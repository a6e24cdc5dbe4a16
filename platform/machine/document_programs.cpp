#include <array>
#include <utility>

#include "platform/machine/document_sections.h"

namespace machine {

namespace {

struct EffectName {
  const char* name;
  EffectKind kind;
};
constexpr std::array<EffectName, 8> effect_names = {{{"delete_file", EffectKind::delete_file},
                                                     {"delete_folder", EffectKind::delete_folder},
                                                     {"write_file", EffectKind::write_file},
                                                     {"delete_key", EffectKind::delete_key},
                                                     {"delete_value", EffectKind::delete_value},
                                                     {"set_value", EffectKind::set_value},
                                                     {"ask_to_close", EffectKind::ask_to_close},
                                                     {"end_process", EffectKind::end_process}}};

[[nodiscard]] bool on_key(EffectKind kind) {
  return kind == EffectKind::delete_key || kind == EffectKind::delete_value || kind == EffectKind::set_value;
}

[[nodiscard]] bool on_processes(EffectKind kind) {
  return kind == EffectKind::ask_to_close || kind == EffectKind::end_process;
}

// A program is told by its path, or by its name for whatever is called so.
[[nodiscard]] std::wstring read_image(const JsonNode& node) {
  const std::wstring image = node.text();
  if (image.find(L'\\') != std::wstring::npos) return read_path_text(node);
  if (image.empty()) node.fail("a program's path or name is wanted here");
  return image;
}

[[nodiscard]] Effect read_effect_as(const JsonNode& row, const EffectName& as) {
  Effect effect;
  effect.kind = as.kind;
  const JsonNode target = row.member(as.name);
  effect.path = on_key(as.kind)         ? read_key_path(target)
                : on_processes(as.kind) ? read_image(target)
                                        : read_path_text(target);
  switch (as.kind) {
    case EffectKind::write_file:
      row.only({as.name, "text", "base64"});
      effect.bytes = read_content(row);
      break;
    case EffectKind::set_value:
      row.only({as.name, "name", "value"});
      effect.name = row.text_or("name", L"");
      effect.value = read_value(row.member("value"));
      break;
    case EffectKind::delete_value:
      row.only({as.name, "name"});
      effect.name = row.text_or("name", L"");
      break;
    case EffectKind::delete_file:
    case EffectKind::delete_folder:
    case EffectKind::delete_key:
    case EffectKind::ask_to_close:
    case EffectKind::end_process:
      row.only({as.name});
      break;
  }
  return effect;
}

[[nodiscard]] Effect read_effect(const JsonNode& row) {
  for (const EffectName& name : effect_names) {
    if (row.has(name.name)) return read_effect_as(row, name);
  }
  row.fail("an effect is wanted here, as {\"delete_file\": \"C:\\\\file.txt\"}");
}

[[nodiscard]] picojson::value write_effect(const Effect& effect) {
  picojson::object row;
  for (const EffectName& name : effect_names) {
    if (name.kind == effect.kind) row[name.name] = json_text(effect.path);
  }
  if (effect.kind == EffectKind::write_file) write_content(effect.bytes, row);
  if (effect.kind == EffectKind::set_value) row["value"] = write_value(effect.value);
  if (!effect.name.empty()) row["name"] = json_text(effect.name);
  return picojson::value(row);
}

}  // namespace

void read_programs(const JsonNode& node, State& state) {
  for (std::size_t i = 0; i < node.size(); ++i) {
    const JsonNode row = node.at(i);
    row.only({"image", "arguments", "runs", "stays", "exit_code", "needs_elevation", "refused", "effects",
              "closes_after", "hangs", "spawns", "refuses", "needs_debug_privilege", "unreadable", "wow64"});
    Program program;
    program.image = read_image(row.member("image"));
    program.arguments = row.text_or("arguments", L"");
    for (const Program& other : state.programs) {
      if (same_name(other.image, program.image) && other.arguments == program.arguments)
        row.member("image").fail("this program stands there twice");
    }
    if (const auto runs = row.find("runs")) program.runs = static_cast<std::uint32_t>(runs->integer(0, 86'400'000));
    if (const auto code = row.find("exit_code")) program.exit_code = code->number32();
    program.stays = row.flag("stays");
    if (program.stays && row.has("runs")) row.fail("what stays does not run for a time");
    program.needs_elevation = row.flag("needs_elevation");
    program.refused = row.flag("refused");
    read_temper(row, program.temper);
    if (const auto effects = row.find("effects")) {
      for (std::size_t j = 0; j < effects->size(); ++j) program.effects.push_back(read_effect(effects->at(j)));
    }
    state.programs.push_back(std::move(program));
  }
}

picojson::value write_programs(const State& state) {
  picojson::array out;
  for (const Program& program : state.programs) {
    picojson::object row;
    row["image"] = json_text(program.image);
    if (!program.arguments.empty()) row["arguments"] = json_text(program.arguments);
    if (program.stays) row["stays"] = picojson::value(true);
    if (!program.stays) row["runs"] = json_number(program.runs);
    row["exit_code"] = json_number(program.exit_code);
    if (program.needs_elevation) row["needs_elevation"] = picojson::value(true);
    if (program.refused) row["refused"] = picojson::value(true);
    write_temper(program.temper, row);
    picojson::array effects;
    for (const Effect& effect : program.effects) effects.push_back(write_effect(effect));
    if (!effects.empty()) row["effects"] = picojson::value(effects);
    out.emplace_back(row);
  }
  return picojson::value(out);
}

}  // namespace machine
