#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tools/ky/check/checker.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/script/resolved_script.h"

namespace {

/// An enciphered text is another script than what it reads as.
bool may_be_clean(const std::string& text) {
  try {
    const script::PlainScript script = script::read_plain_script("input", text);
    return script::is_enciphered(script) || script::examine(script).faults.empty();
  } catch (const script::ScriptError&) {
    return false;
  }
}

}  // namespace

/// No text breaks the check, its findings are rules' and sorted, and what would not compile has an error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static workbench::DeskEngines desk;
  const std::string text(data, data + size);
  bool has_error = false;
  script::Position before;
  for (const check::Finding& finding : check::check_text("input", text, host::ScriptKey{}, desk.engines())) {
    const check::Rule* const rule = check::find_rule(finding.rule);
    if (rule == nullptr || finding.at < before || finding.message.empty()) std::abort();
    has_error |= rule->severity == check::Severity::error;
    before = finding.at;
  }
  if (!has_error && !may_be_clean(text)) std::abort();
  return 0;
}
