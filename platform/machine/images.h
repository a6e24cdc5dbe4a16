#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/machine/file_tree.h"
#include "platform/ports/types.h"

namespace machine {

struct State;

/// What a command line may mean as a program, in the order of trial: the quoted text, or, without quotes, all up to
/// each blank in turn.
[[nodiscard]] std::vector<std::wstring> program_candidates(std::wstring_view command_line);

/// A file that is to run.
struct Image {
  ports::ErrorCode error = 0;  // success, file_not_found, bad_exe_format, access_denied (a folder)
  NodeId node = 0;
  std::wstring path;
};

/// The file that a name means: as a path, else in the program's folder, the current one and the system's; ".exe" is
/// tried where the name has no dot. It need not be a program.
[[nodiscard]] Image find_file(const State& state, std::wstring_view name);

/// The program that the command line starts. bad_exe_format where the first file that is there is none.
[[nodiscard]] Image find_image(const State& state, std::wstring_view command_line);

/// True for a file that the system can run: its behaviour is told, or its content starts as a program's, or, where the
/// content is not told, its name ends as one's.
[[nodiscard]] bool is_program(const State& state, const Image& image);

}  // namespace machine
