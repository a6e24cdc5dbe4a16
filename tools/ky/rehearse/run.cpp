#include "tools/ky/rehearse/run.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>
#include <ostream>

#include "diagnostics/reader/session_key.h"
#include "platform/desk/desk.h"
#include "platform/ports/build.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/log/private_key.h"
#include "tools/ky/rehearse/noting_cng.h"
#include "tools/ky/rehearse/report.h"
#include "tools/ky/rehearse/run_and_report.h"
#include "tools/ky/rehearse/run_logs.h"
#include "tools/ky/rehearse/script_run.h"
#include "tools/ky/rehearse/script_source.h"
#include "tools/ky/rehearse/switched_environment.h"

namespace workbench {

namespace {

/// The real door, with a last word before it.
class ReportingTermination final : public ports::Termination {
 public:
  explicit ReportingTermination(ports::Termination& inner) : inner_(inner) {}

  void before_stop(std::function<void(const ports::StopReason&)> action) { action_ = std::move(action); }

  [[noreturn]] void stop(const ports::StopReason& reason) override {
    if (action_) action_(reason);
    inner_.stop(reason);
    std::abort();  // not reached
  }
  void step() override { inner_.step(); }

 private:
  ports::Termination& inner_;
  std::function<void(const ports::StopReason&)> action_;
};

/// What opens the run's log. A private key that is none is refused before anything runs.
class LogKeys {
 public:
  LogKeys(ports::Cng& cng, const rehearsal::NotingCng& noted, const std::optional<std::string>& file)
      : noted_(noted), keys_(cng), given_(file.has_value()) {
    if (given_ && !keys_.use_private_key(log_tool::read_private_key(*file))) {
      throw BadInput(*file + ": it is no private key for logs");
    }
  }

  /// Once, behind the run. Null where the log is to stay sealed.
  [[nodiscard]] const diagnostics::reader::KeyOpener* after_run() {
    if (!given_ || noted_.algorithm().empty() || !keys_.use_algorithm(noted_.algorithm())) return nullptr;
    return &keys_;
  }

 private:
  const rehearsal::NotingCng& noted_;
  diagnostics::reader::KeyOpener keys_;
  const bool given_;
};

/// Copies the run's log files to the folder as they are.
void copy_logs(const rehearsal::Outcome& outcome, rehearsal::OutputFolder& folder, std::ostream& err) {
  constexpr std::uintmax_t limit = std::uintmax_t{1} << 30;
  for (const std::string& log : rehearsal::own_logs(outcome)) {
    std::string bytes;
    if (!desk::exists(log)) continue;
    std::string reason = desk::read_file(log, limit, bytes);
    if (reason.empty()) reason = folder.write(rehearsal::file_name_of(log), bytes);
    if (!reason.empty()) err << "ky: " << reason << '\n';
  }
}

std::vector<std::string> existing(const std::vector<std::string>& files) {
  std::vector<std::string> there;
  std::copy_if(files.begin(), files.end(), std::back_inserter(there), desk::exists);
  return there;
}

}  // namespace

int run(const RunOptions& options, std::ostream& out, std::ostream& err) {
  const ports::System* const real = ports::real_system(ports::Module::null);
  if (real == nullptr) {
    throw BadInput("run: this build has no Windows to run on; 'ky rehearse' runs the same script on a machine file");
  }
  rehearsal::NotingCng cng(real->cng);
  LogKeys keys(real->cng, cng, options.log_key);
  const auto source = rehearsal::script_source(options.script, options.script_key, real->cipher);
  ReportingTermination termination(real->termination);
  rehearsal::SwitchedEnvironment environment(real->environment, options.switches);
  rehearsal::ScriptRun script(ports::with(*real, environment, termination, cng));
  rehearsal::OutputFolder folder(options.out);
  rehearsal::Report report("Run of " + source.title, folder, out, err);
  report.keep_log(options.log_key.has_value());
  report.read_log_by([&](const rehearsal::Outcome& outcome) -> std::optional<std::string> {
    copy_logs(outcome, folder, err);
    if (!options.log_key) return std::nullopt;
    return rehearsal::clear_text_of(existing(rehearsal::own_logs(outcome)), keys.after_run(), err);
  });
  termination.before_stop([&](const ports::StopReason& reason) { report.finish(script.stopped(reason)); });

  return rehearsal::run_and_report(script, source, report, err);
}

}  // namespace workbench
