#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace workbench {

// What the command line asks for, one structure a subcommand. Paths are UTF-8, as they were given. An absent script key
// is the one that the build was configured with.

/// `ky keys new DIR`
struct KeysNewOptions {
  std::string folder;
};

/// `ky script compile IN -o OUT [--script-key FILE]`
struct ScriptCompileOptions {
  std::string in;
  std::string out;
  std::optional<std::string> script_key;
};

/// `ky script decompile IN -o OUT [--script-key FILE]`
struct ScriptDecompileOptions {
  std::string in;
  std::string out;
  std::optional<std::string> script_key;
};

/// `ky script check [--script-key FILE] [--json] FILE...` and `ky script check --rules`
struct ScriptCheckOptions {
  std::vector<std::string> files;  // at least one, but with `rules`
  std::optional<std::string> script_key;
  bool rules = false;  // print the rules instead
  bool json = false;   // for tools
};

/// `ky script graph IN -o OUT.svg|OUT.dot [--script-key FILE]`
struct ScriptGraphOptions {
  std::string in;
  std::string out;
  std::optional<std::string> script_key;
};

/// `ky rehearse --machine M.json [--script S.xml] [--script-key FILE] [--out DIR] [--receipt FILE] [--max-steps N]
/// [--parent LINE] [-- switches]`
struct RehearseOptions {
  static constexpr std::uint64_t default_max_steps = 1'000'000;

  std::string machine;
  std::optional<std::string> script;  // absent: the edition's
  std::optional<std::string> script_key;
  std::optional<std::string> out;
  std::optional<std::string> receipt;           // a file
  std::uint64_t max_steps = default_max_steps;  // at least 1
  std::optional<std::string> parent;            // the parent process's command line; absent: the machine's
  std::vector<std::string> switches;
};

/// `ky run --script S.xml [--script-key FILE] [--key private.pem] [--out DIR] [-- switches]`
struct RunOptions {
  std::string script;
  std::optional<std::string> script_key;
  std::optional<std::string> log_key;  // the log's private key
  std::optional<std::string> out;
  std::vector<std::string> switches;
};

/// `ky log read FILE... [--key private.pem] [--algorithm NAME] [--run] [--by-thread | --follow] [--json]`
/// and `ky log read FILE... [...] --html OUT`
struct LogReadOptions {
  std::vector<std::string> files;  // at least one; with `follow` one
  std::optional<std::string> key;
  std::string algorithm = "AES";
  bool run = false;        // all files of each file's run
  bool by_thread = false;  // no timeline
  bool follow = false;
  bool json = false;
  std::optional<std::string> html = std::nullopt;  // where one page goes; with none of the three before
};

using Options = std::variant<KeysNewOptions, ScriptCompileOptions, ScriptDecompileOptions, ScriptCheckOptions,
                             ScriptGraphOptions, RehearseOptions, RunOptions, LogReadOptions>;

}  // namespace workbench
