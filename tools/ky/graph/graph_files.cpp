#include "tools/ky/graph/graph_files.h"

#include <chrono>
#include <utility>

#include "platform/desk/desk.h"
#include "platform/desk/program.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/graph/dot_text.h"
#include "tools/ky/script/decompiler.h"
#include "tools/ky/script/script_files.h"

namespace graph {

namespace {

using workbench::BadInput;

// A script of several hundred commands takes less than a second.
constexpr std::chrono::minutes time_for_a_picture(2);

/// Without the folder, which differs from desk to desk.
std::string name_of(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

script::PlainScript read(const std::string& in, const host::ScriptKey& key) {
  script::PlainScript script = script::read_script_file(in);
  if (!script::is_enciphered(script)) return script;
  workbench::DeskEngines desk;
  const script::TextCipher cipher(desk.engines().cipher(), key);
  return script::read_plain_script(in, script::decompile(script, cipher));
}

std::string picture_of(const std::string& dot, const std::string& out, const std::string& program) {
  const desk::ProgramRun run = desk::run_program(program, {"-Tsvg"}, dot, time_for_a_picture);
  if (!run.found) {
    throw BadInput(out + ": a picture takes Graphviz, and its program \"" + program +
                   "\" is not on the PATH; install Graphviz, or name a file that ends in \".dot\"");
  }
  if (!run.failure.empty()) throw BadInput(out + ": " + run.failure);
  if (run.exit_code != 0 || run.output.empty()) {
    throw BadInput(out + ": " + program + " ended with " + std::to_string(run.exit_code) + ": " +
                   run.errors.substr(0, run.errors.find_first_of("\r\n")));
  }
  return run.output;
}

}  // namespace

void graph_file(const std::string& in, const host::ScriptKey& key, const std::string& out, const std::string& program) {
  const bool picture = out.ends_with(".svg");
  if (!picture && !out.ends_with(".dot")) throw BadInput(out + ": must end in \".svg\" or \".dot\"");
  std::string text = dot_text(flow_of(read(in, key)), name_of(in));
  if (picture) text = picture_of(text, out, program);
  if (const std::string failure = desk::write_file(out, text); !failure.empty()) throw BadInput(failure);
}

}  // namespace graph
