#include "tools/ky/ky.h"

#include <exception>
#include <ostream>
#include <variant>

#include "host/script/script_key.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/check/check_files.h"
#include "tools/ky/command_line.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/graph/graph_files.h"
#include "tools/ky/keys/new_keys.h"
#include "tools/ky/log/log_read.h"
#include "tools/ky/rehearse/rehearse.h"
#include "tools/ky/rehearse/run.h"
#include "tools/ky/script/script_files.h"

namespace workbench {

namespace {

host::ScriptKey key_of(const std::optional<std::string>& file) {
  return file.has_value() ? script::read_key_file(*file) : host::built_in_script_key();
}

/// Does one subcommand.
struct Work {
  std::ostream& out;
  std::ostream& err;

  int operator()(const KeysNewOptions& options) const {
    DeskEngines desk;
    for (const std::string& file : keys::make_new_keys(options.folder, desk.engines().key_maker())) {
      out << file << '\n';
    }
    return 0;
  }
  int operator()(const ScriptCompileOptions& options) const {
    script::compile_file(options.in, key_of(options.script_key), options.out);
    return 0;
  }
  int operator()(const ScriptDecompileOptions& options) const {
    script::decompile_file(options.in, key_of(options.script_key), options.out);
    return 0;
  }
  int operator()(const ScriptCheckOptions& options) const {
    return check::check_files(options, key_of(options.script_key), out, err);
  }
  int operator()(const ScriptGraphOptions& options) const {
    graph::graph_file(options.in, key_of(options.script_key), options.out);
    return 0;
  }
  int operator()(const RehearseOptions& options) const { return rehearse(options, out, err); }
  int operator()(const RunOptions& options) const { return run(options, out, err); }
  int operator()(const LogReadOptions& options) const { return log_tool::log_read(options, out, err); }
};

}  // namespace

int run_ky(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  const std::variant<Options, Usage> parsed = parse_command_line(arguments);
  if (const Usage* const usage = std::get_if<Usage>(&parsed); usage != nullptr) {
    (usage->exit_code == 0 ? out : err) << usage->text;
    return usage->exit_code;
  }
  try {
    return std::visit(Work{out, err}, std::get<Options>(parsed));
  } catch (const BadInput& refused) {
    err << refused.what() << '\n';
  } catch (const std::exception& error) {
    err << "ky: " << error.what() << '\n';
  }
  return 1;
}

}  // namespace workbench
