#include "tools/ky/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <utility>

namespace workbench {

namespace {

constexpr int wrong_usage = 2;
// A number that does not fit saturates beyond it.
constexpr std::uint64_t max_max_steps = std::numeric_limits<std::int64_t>::max();

CLI::Validator a_name() {
  return {[](std::string& text) { return text.empty() ? std::string("a name is missing") : std::string(); }, ""};
}

CLI::Option* take_name(CLI::App& app, const char* name, std::string& into, const char* help) {
  return app.add_option(name, into, help)->check(a_name());
}

CLI::Option* take_name(CLI::App& app, const char* name, std::optional<std::string>& into, const char* help) {
  const auto keep = [&into](const std::string& value) { into = value; };
  return app.add_option_function<std::string>(name, keep, help)->check(a_name())->type_name("TEXT");
}

/// The grammar of the command line over the options that it fills.
class CommandLine {
 public:
  CommandLine() {
    app_.set_version_flag("--version", "ky " KY_VERSION);
    app_.require_subcommand(0, 1);
    // A path that begins with "/" is no option, on any system.
    app_.allow_windows_style_options(false);
    add_keys(*app_.add_subcommand("keys", "Make keys"));
    add_script(*app_.add_subcommand("script", "Check, draw and translate scripts"));
    add_rehearse(*app_.add_subcommand("rehearse", "Run a script on a copy of a machine"));
    add_run(*app_.add_subcommand("run", "Run a script for real; Windows only"));
    add_log(*app_.add_subcommand("log", "Read logs"));
  }

  [[nodiscard]] std::variant<Options, Usage> parse(std::vector<std::string> arguments) {
    take_switches(arguments);
    // The library takes them from the back.
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(std::move(arguments));
      // The library would miss the subcommand first, whatever stands in its place.
      if (!chosen_) return wrong_use("a subcommand is missing");
      return chosen_();
    } catch (const CLI::CallForHelp&) {
      return Usage{0, app_.help("")};
    } catch (const CLI::CallForVersion& version) {
      return Usage{0, std::string(version.what()) + '\n'};
    } catch (const CLI::ParseError& error) {
      return wrong_use(error.what());
    }
  }

 private:
  static void add_script_key(CLI::App& app, std::optional<std::string>& into) {
    take_name(app, "--script-key", into, "Key of the script [the build's own]");
  }

  void add_keys(CLI::App& keys) {
    keys.require_subcommand(0, 1);
    CLI::App& fresh = *keys.add_subcommand("new", "A fresh script key and a key pair for logs");
    take_name(fresh, "DIR", keys_new_.folder, "Folder to write them to")->required();
    fresh.parse_complete_callback([this] { choose(keys_new_); });
  }

  template <class Translation>
  void add_translation(CLI::App& app, Translation& options, const char* in) {
    take_name(app, "IN", options.in, in)->required();
    take_name(app, "-o,--out", options.out, "File to write")->required();
    add_script_key(app, options.script_key);
    app.parse_complete_callback([this, &options] { choose(options); });
  }

  void add_script(CLI::App& script) {
    script.require_subcommand(0, 1);
    add_translation(*script.add_subcommand("compile", "Check and encipher a plain script"), compile_, "Plain script");
    add_translation(*script.add_subcommand("decompile", "Make an enciphered script plain"), decompile_,
                    "Enciphered script");
    add_translation(*script.add_subcommand("graph", "Draw the flow of a script; needs Graphviz for SVG"), graph_,
                    "Script, plain or enciphered");
    add_check(*script.add_subcommand("check", "Tell what is wrong or doubtful in scripts"));
  }

  void add_check(CLI::App& app) {
    CLI::Option* const files = app.add_option("FILE", check_.files, "Scripts, plain or enciphered")->check(a_name());
    CLI::Option* const rules = app.add_flag("--rules", check_.rules, "Print the rules and what they are for");
    app.add_flag("--json", check_.json, "Print JSON");
    add_script_key(app, check_.script_key);
    rules->excludes(files);
    app.parse_complete_callback([this] {
      if (check_.files.empty() && !check_.rules) throw CLI::RequiredError("FILE");
      choose(check_);
    });
  }

  void add_rehearse(CLI::App& app) {
    take_name(app, "--machine", rehearse_.machine, "The machine, a JSON file; it is not changed")->required();
    take_name(app, "--script", rehearse_.script, "Plain script [the edition's]");
    add_script_key(app, rehearse_.script_key);
    take_name(app, "--out", rehearse_.out, "Folder for results, logs and the machine afterwards");
    take_name(app, "--receipt", rehearse_.receipt, "File for the receipt: what is gone and what is not, as JSON");
    app.add_option("--max-steps", rehearse_.max_steps, "Steps after which a run that goes on is stopped")
        ->check(CLI::Range(std::uint64_t{1}, max_max_steps, "NUMBER"))
        ->capture_default_str();
    take_name(app, "--parent", rehearse_.parent, "Command line of the process that started the run [the machine's]");
    app.footer("What follows \"--\" is the command line that the script sees [the machine's].");
    app.parse_complete_callback([this] { choose(rehearse_); });
  }

  void add_run(CLI::App& app) {
    take_name(app, "--script", run_.script, "Plain script")->required();
    add_script_key(app, run_.script_key);
    take_name(app, "--key", run_.log_key, "Private key of the log; without it the log stays sealed");
    take_name(app, "--out", run_.out, "Folder for results and logs");
    app.footer("What follows \"--\" is the command line that the script sees.");
    app.parse_complete_callback([this] { choose(run_); });
  }

  void add_log(CLI::App& log) {
    log.require_subcommand(0, 1);
    CLI::App& app = *log.add_subcommand("read", "The text of a run's log, sealed or not");
    CLI::Option* const files = app.add_option("FILE", log_read_.files, "Log files, or folders of them");
    files->required()->check(a_name());
    take_name(app, "--key", log_read_.key, "Private key of the log, for sealed files");
    take_name(app, "--algorithm", log_read_.algorithm, "Algorithm that the log was sealed with")->capture_default_str();
    app.add_flag("--run", log_read_.run, "Read all files of each FILE's run");
    app.add_flag("--by-thread", log_read_.by_thread, "One thread after the other instead of one timeline");
    app.add_flag("--json", log_read_.json, "An object a line, for tools");
    app.add_flag("--follow", log_read_.follow, "Show the run of FILE while it goes on, until it ends")
        ->excludes("--by-thread")
        ->excludes("--run");
    take_name(app, "--html", log_read_.html, "One page for a browser into this file, instead of text")
        ->excludes("--by-thread")
        ->excludes("--follow")
        ->excludes("--json");
    app.parse_complete_callback([this, files] {
      if (log_read_.follow && files->count() > 1) throw CLI::ValidationError("--follow", "takes one FILE");
      choose(log_read_);
    });
  }

  /// Cuts off "--" and what follows it, where the subcommand hands it on.
  void take_switches(std::vector<std::string>& arguments) {
    if (arguments.empty() || (arguments.front() != "rehearse" && arguments.front() != "run")) return;
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    if (mark == arguments.end()) return;
    std::vector<std::string>& into = arguments.front() == "run" ? run_.switches : rehearse_.switches;
    into.assign(mark + 1, arguments.end());
    arguments.erase(mark, arguments.end());
  }

  template <class Chosen>
  void choose(const Chosen& options) {
    chosen_ = [&options] { return Options(options); };
  }

  [[nodiscard]] Usage wrong_use(const std::string& reason) const {
    const std::string called = called_so_far();
    return {wrong_usage, called + ": " + reason + "\nTry '" + called + " --help'.\n"};
  }

  [[nodiscard]] std::string called_so_far() const {
    std::string called = "ky";
    for (const CLI::App* app = &app_; !app->get_subcommands().empty();) {
      app = app->get_subcommands().front();
      called += ' ' + app->get_name();
    }
    return called;
  }

  CLI::App app_{"The workbench for scripts of the command library", "ky"};
  KeysNewOptions keys_new_;
  ScriptCompileOptions compile_;
  ScriptDecompileOptions decompile_;
  ScriptCheckOptions check_;
  ScriptGraphOptions graph_;
  RehearseOptions rehearse_;
  RunOptions run_;
  LogReadOptions log_read_;
  // The options of the subcommand that was given.
  std::function<Options()> chosen_;
};

}  // namespace

std::variant<Options, Usage> parse_command_line(const std::vector<std::string>& arguments) {
  return CommandLine().parse(arguments);
}

}  // namespace workbench
