#include "platform/machine/environment_variables.h"

#include <cstddef>

#include "platform/machine/names.h"

namespace machine {

std::optional<std::wstring> environment_variable(const EnvironmentFacts& facts, std::wstring_view name) {
  const std::wstring drive = facts.windows.substr(0, 2);
  const struct {
    std::wstring_view name;
    std::wstring value;
  } variables[] = {{L"SystemDrive", drive},
                   {L"SystemRoot", facts.windows},
                   {L"windir", facts.windows},
                   {L"ComSpec", facts.system + L"\\cmd.exe"},
                   {L"ProgramFiles", facts.program_files},
                   {L"ProgramW6432", facts.program_files},
                   {L"ProgramFiles(x86)", facts.program_files + L" (x86)"},
                   {L"CommonProgramFiles", facts.program_files + L"\\Common Files"},
                   {L"ProgramData", facts.common_app_data},
                   {L"ALLUSERSPROFILE", facts.common_app_data},
                   {L"PUBLIC", drive + L"\\Users\\Public"},
                   {L"TEMP", facts.temp},
                   {L"TMP", facts.temp}};
  for (const auto& variable : variables) {
    if (same_name(variable.name, name)) return variable.value;
  }
  return std::nullopt;
}

std::wstring expand_variables(const EnvironmentFacts& facts, std::wstring_view text) {
  std::wstring out;
  while (!text.empty()) {
    const std::size_t begin = text.find(L'%');
    out.append(text.substr(0, begin));
    if (begin == std::wstring_view::npos) break;
    text.remove_prefix(begin);
    const std::size_t end = text.find(L'%', 1);
    const auto value =
        end == std::wstring_view::npos ? std::nullopt : environment_variable(facts, text.substr(1, end - 1));
    if (value) {
      out += *value;
      text.remove_prefix(end + 1);
    } else {
      out.append(text.substr(0, end));
      text = end == std::wstring_view::npos ? std::wstring_view() : text.substr(end);
    }
  }
  return out;
}

}  // namespace machine
