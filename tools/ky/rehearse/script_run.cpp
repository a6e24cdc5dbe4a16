#include "tools/ky/rehearse/script_run.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/commands/deleting_command.h"
#include "installer/desktop/module/library.h"
#include "installer/utils/base/strings/case_fold.h"
#include "installer/utils/base/strings/utf8.h"
#include "ky/keys.h"
#include "platform/ports/codes.h"
#include "tools/ky/rehearse/clock_keys.h"
#include "tools/ky/rehearse/environment_keys.h"
#include "tools/ky/script/decompiler.h"
#include "tools/ky/script/text_cipher.h"

namespace rehearsal {

namespace {

/// The exit code of a process that stopped through its door.
constexpr std::int32_t stopped_code = 1;

std::map<std::string, GlobalValue> globals_of(const host::Store& store) {
  std::map<std::string, GlobalValue> globals;
  for (const host::StoredKey& key : store.keys()) {
    const std::string_view name = key.name;
    if (name.starts_with(ky::int_prefix)) {
      globals[key.name] = ky::FromStored<std::int32_t>(key.value);
    } else if (name.starts_with(ky::string_prefix)) {
      const auto* const text = ky::FromStored<ky::CString*>(key.value);
      globals[key.name] = text == nullptr ? GlobalValue() : GlobalValue(std::wstring(text->value));
    }
  }
  return globals;
}

std::string describe_end(const host::RunResult& result) {
  switch (result.end) {
    case host::RunEnd::finished:
      return {};
    case host::RunEnd::stopped:
      return "a command failed and set int_ReturnCode";
    case host::RunEnd::exception:
      return "an exception left the command: " + result.reason;
    case host::RunEnd::lost:
      return result.reason;
  }
  return {};
}

}  // namespace

ScriptRun::ScriptRun(const ports::System& world)
    : recorder_(world),
      library_(ky::library::factories()),
      session_(std::make_unique<host::Session>(recorder_.system(), library_)) {}

ScriptRun::~ScriptRun() = default;

std::vector<std::string> ScriptRun::prepare(std::string_view enciphered, const host::ScriptKey& key,
                                            PlainLog::Sink log) {
  const record::Recorder::Pause unnoted(recorder_);
  if (std::string reason = session_->start(key); !reason.empty()) return {std::move(reason)};
  if (log) {
    plain_log_ = new PlainLog(recorder_.system().clock, std::move(log));
    session_->store().put(ky::keys::SelfFree_LoggerApi.name, ky::ToStored(plain_log_));
  }
  std::vector<std::string> reasons;
  for (const host::ScriptFault& fault : session_->load(enciphered)) reasons.push_back(host::describe(fault));
  if (reasons.empty()) {
    const script::TextCipher cipher(recorder_.system().cipher, key);
    const std::string plain = script::decompile(script::read_plain_script({}, enciphered), cipher);
    const script::PlainScript readable = script::read_plain_script({}, plain);
    clock_keys_ = clock_keys(readable);
    std::vector<std::int32_t> indexes;
    for (const host::ProgramStep& step : program().steps()) indexes.push_back(step.index);
    targets_ = receipt::TargetBook(readable, indexes);
  }
  return reasons;
}

Outcome ScriptRun::run(const Progress& progress) {
  progress_ = progress;
  const host::RunResult result = session_->run(*this);
  Outcome outcome = seen_so_far();
  outcome.return_code = session_->return_code();
  outcome.ended_early = describe_end(result);
  // Nobody releases a log that another one replaced.
  const bool replaced = session_->store().get(ky::keys::SelfFree_LoggerApi.name) != ky::ToStored(plain_log_);
  session_->release();
  if (replaced) ky::Release(std::exchange(plain_log_, nullptr));
  gather_changes(outcome);
  return outcome;
}

Outcome ScriptRun::stopped(const ports::StopReason& reason) const {
  Outcome outcome = seen_so_far();
  outcome.return_code = stopped_code;
  outcome.stopped = Stop{current_.index, current_.name, base::strings::to_utf8(reason.text)};
  gather_changes(outcome);
  return outcome;
}

void ScriptRun::before(const host::ProgramStep& step) {
  current_ = {step.index, step.name, true, 0, -1};
  targets_.before(step.index, variables());
  if (progress_) progress_(commands_.size() + 1, step.name);
}

void ScriptRun::after(const host::ProgramStep& step, const host::StepOutcome& outcome) {
  commands_.push_back({step.index, step.name, outcome.run, outcome.result, outcome.next});
  targets_.after(step.index, outcome.run, outcome.result);
  const auto* const deleting = dynamic_cast<const host::DeletingCommand*>(step.command.get());
  if (deleting == nullptr || !outcome.run || !deleting->asked_for()) return;
  const bool done = outcome.result == ports::code::success;
  asked_for_.push_back({deleting->asked_for()->kind, deleting->asked_for()->path,
                        done ? ports::code::file_not_found : outcome.result, done});
}

receipt::Variables ScriptRun::variables() const {
  const host::Store& store = session_->store();
  const auto text = [&store](std::wstring_view name) -> std::optional<std::wstring> {
    std::string key(ky::string_prefix);
    // As the commands do it: a name's characters become a key's by their low bytes.
    for (const wchar_t unit : name) key.push_back(static_cast<char>(static_cast<unsigned char>(unit & 0xFF)));
    const auto* const found = ky::FromStored<ky::CString*>(store.get(key));
    if (found == nullptr || found->value == nullptr) return std::nullopt;
    return std::wstring(found->value);
  };
  return {text, ky::FromStored<std::int32_t>(store.get(ky::keys::int_x64.name)) != 0};
}

Outcome ScriptRun::seen_so_far() const {
  Outcome outcome;
  outcome.commands = commands_;
  outcome.globals = globals_of(session_->store());
  outcome.named = targets_.names(variables());
  outcome.environment = environment_keys(outcome.globals);
  for (const std::string& key : clock_keys_) {
    if (outcome.globals.contains(key)) outcome.environment.insert(key);
  }
  return outcome;
}

void ScriptRun::gather_changes(Outcome& outcome) const {
  outcome.changes = recorder_.changes();
  outcome.actions = recorder_.actions();
  outcome.deletions = recorder_.deletions();
  outcome.logs = recorder_.logs();
  outcome.processes = recorder_.processes();
  outcome.moves = recorder_.moves();
  for (const record::Deletion& asked : asked_for_) {
    const bool seen = std::any_of(outcome.deletions.begin(), outcome.deletions.end(), [&asked](const auto& deletion) {
      return base::strings::equal_ignoring_case(deletion.path, asked.path);
    });
    if (!seen) outcome.deletions.push_back(asked);
  }
}

}  // namespace rehearsal
