#include "platform/machine/images.h"

#include <array>
#include <cstddef>

#include "platform/machine/file_lookup.h"
#include "platform/machine/state.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;

std::vector<std::wstring> program_candidates(std::wstring_view command_line) {
  const std::size_t begin = command_line.find_first_not_of(L" \t");
  if (begin == std::wstring_view::npos) return {};
  command_line.remove_prefix(begin);
  if (command_line.front() == L'"') {
    const std::size_t end = command_line.find(L'"', 1);
    return {std::wstring(command_line.substr(1, end == std::wstring_view::npos ? end : end - 1))};
  }
  std::vector<std::wstring> candidates;
  std::size_t end = 0;
  while (end != std::wstring_view::npos) {
    end = command_line.find_first_of(L" \t", end);
    candidates.emplace_back(command_line.substr(0, end));
    if (end != std::wstring_view::npos) end = command_line.find_first_not_of(L" \t", end);
  }
  return candidates;
}

namespace {

[[nodiscard]] Image file_at(const State& state, const std::wstring& path) {
  const ParsedPath parsed = parse_path(path, state.environment.current_folder);
  if (parsed.error != code::success) return {code::file_not_found, 0, {}};
  const Found found = look_up(state.files, parsed.path, LastLink::followed);
  if (found.error != code::success) return {code::file_not_found, 0, {}};
  return {state.files.nodes.at(found.node).folder ? code::access_denied : code::success, found.node,
          to_text(parsed.path)};
}

[[nodiscard]] Image with_extension(const State& state, const std::wstring& path) {
  const Image plain = file_at(state, path);
  if (plain.error == code::success || last_part(path).find(L'.') != std::wstring_view::npos) return plain;
  const Image extended = file_at(state, path + L".exe");
  return extended.error == code::file_not_found ? plain : extended;
}

[[nodiscard]] std::wstring folder_of(std::wstring_view path) {
  const std::size_t at = path.find_last_of(L'\\');
  return std::wstring(path.substr(0, at == std::wstring_view::npos ? 0 : at));
}

}  // namespace

Image find_file(const State& state, std::wstring_view name) {
  const EnvironmentFacts& facts = state.environment;
  if (name.find_first_of(L"\\/:") != std::wstring_view::npos) return with_extension(state, std::wstring(name));
  const std::array<std::wstring, 4> folders = {folder_of(facts.program), facts.current_folder, facts.system,
                                               facts.windows};
  for (const std::wstring& folder : folders) {
    Image image = with_extension(state, std::wstring(folder).append(1, L'\\').append(name));
    if (image.error == code::success) return image;
  }
  return {code::file_not_found, 0, {}};
}

Image find_image(const State& state, std::wstring_view command_line) {
  for (const std::wstring& candidate : program_candidates(command_line)) {
    Image image = find_file(state, candidate);
    if (image.error != code::success) continue;
    if (!is_program(state, image)) image.error = code::bad_exe_format;
    return image;
  }
  return {code::file_not_found, 0, {}};
}

bool is_program(const State& state, const Image& image) {
  if (is_told(state.programs, image.path)) return true;
  const FileNode& node = state.files.nodes.at(image.node);
  if (!node.bytes.empty()) return node.bytes.size() >= 2 && node.bytes[0] == 'M' && node.bytes[1] == 'Z';
  if (node.size == 0) return false;
  return name_ends_with(image.path, L".exe") || name_ends_with(image.path, L".com");
}

}  // namespace machine
