#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/machine/running.h"
#include "platform/ports/registry.h"
#include "platform/ports/types.h"

namespace machine {

struct State;

enum class EffectKind {
  delete_file,
  delete_folder,
  write_file,
  delete_key,
  delete_value,
  set_value,
  ask_to_close,
  end_process,
};

/// Something that a program does to the machine when it ends. What is absent or in use stays as it is.
struct Effect {
  EffectKind kind = EffectKind::delete_file;
  std::wstring path;                // of the file, folder or key; the image, or its name alone, of processes
  std::wstring name;                // of the value
  std::vector<std::uint8_t> bytes;  // of the file
  ports::RegistryValue value;
};

/// How a program behaves that is started, and what it does that ends by itself.
struct Program {
  std::wstring image;      // full path, or name alone for any of that name
  std::wstring arguments;  // its command line holds this text; empty for any
  std::uint32_t runs = 0;  // milliseconds
  bool stays = false;      // it never ends by itself
  std::uint32_t exit_code = 0;
  bool needs_elevation = false;
  bool refused = false;  // the user does not let it be elevated
  Temper temper;
  std::vector<Effect> effects;
};
using Programs = std::vector<Program>;

/// The behaviour of an image that is started with a command line: by its path, else by its name, and in each case by
/// the first row whose arguments are told and stand in the line, else by the one without arguments. Null where nothing
/// is said, which is a program that ends at once with 0.
[[nodiscard]] const Program* find_program(const Programs& programs, std::wstring_view image,
                                          std::wstring_view command_line);

/// Whether anything is said of an image.
[[nodiscard]] bool is_told(const Programs& programs, std::wstring_view image);

/// Whether `wanted`, a path or a name, means this process.
[[nodiscard]] bool is_meant(const State& state, const RunningProgram& process, std::wstring_view wanted);

/// Does one thing. An effect that is not possible is passed over, as a program's own failure is its own affair; those
/// on processes are not done here but by their table.
void apply(State& state, const Effect& effect);

}  // namespace machine
