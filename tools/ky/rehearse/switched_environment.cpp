#include "tools/ky/rehearse/switched_environment.h"

#include "installer/utils/base/strings/utf8.h"

namespace rehearsal {

std::wstring program_part(const std::wstring& command_line) {
  if (command_line.starts_with(L'"')) {
    const std::size_t closing = command_line.find(L'"', 1);
    return closing == std::wstring::npos ? command_line : command_line.substr(0, closing + 1);
  }
  return command_line.substr(0, command_line.find(L' '));
}

std::wstring quoted(const std::wstring& argument) {
  const bool plain = !argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos;
  if (plain) return argument;
  // The C runtime's rules: a quote is escaped, and so are the backslashes right before one.
  std::wstring out = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') out.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    out.push_back(c);
  }
  out.append(backslashes, L'\\');
  return out + L"\"";
}

machine::RunningProgram with_line(const std::optional<machine::RunningProgram>& parent, const std::wstring& line) {
  machine::RunningProgram program;
  if (parent) {
    program = *parent;
  } else {
    program.image = program_part(line);
    std::erase(program.image, L'"');
  }
  program.command_line = line;
  return program;
}

std::wstring SwitchedEnvironment::command_line() {
  std::wstring line = inner_.command_line();
  if (switches_.empty()) return line;
  line = program_part(line);
  for (const std::string& argument : switches_) line += L" " + quoted(base::strings::to_wide(argument));
  return line;
}

}  // namespace rehearsal
