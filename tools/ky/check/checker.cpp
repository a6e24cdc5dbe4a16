#include "tools/ky/check/checker.h"

#include <algorithm>
#include <utility>

#include "platform/ports/build.h"
#include "tools/ky/check/allowances.h"
#include "tools/ky/check/commands.h"
#include "tools/ky/check/flow.h"
#include "tools/ky/check/flow_rules.h"
#include "tools/ky/check/key_rules.h"
#include "tools/ky/check/key_traffic.h"
#include "tools/ky/check/value_rules.h"
#include "tools/ky/check/xpath_rules.h"
#include "tools/ky/script/decompiler.h"
#include "tools/ky/script/resolved_script.h"

namespace check {

namespace {

std::vector<Finding> findings_of(std::vector<script::Fault> faults) {
  std::vector<Finding> findings;
  findings.reserve(faults.size());
  for (script::Fault& fault : faults) findings.push_back({fault.at, fault.rule, std::move(fault.reason)});
  return findings;
}

bool knows_commands(const std::vector<script::Fault>& faults) {
  return std::none_of(faults.begin(), faults.end(), [](const script::Fault& fault) {
    return fault.rule == rule::unknown_element || fault.rule == rule::unknown_attribute ||
           fault.rule == rule::long_value;
  });
}

void check_variables(const std::vector<KnownCommand>& commands, const Flow& flow, const FlowGroups& groups,
                     ports::Xml& xml, std::vector<Finding>& findings) {
  std::vector<KeyTraffic> traffic;
  traffic.reserve(commands.size());
  for (const KnownCommand& command : commands) traffic.push_back(traffic_of(command));
  find_puts(flow, groups, traffic);
  check_keys(commands, groups, traffic, findings);
  XPathTrial trial(xml);
  for (std::size_t i = 0; i < commands.size(); ++i) {
    if (groups.of[i] != nowhere) check_xpaths(commands[i], traffic[i], trial, findings);
  }
}

}  // namespace

std::vector<Finding> check(const script::PlainScript& script, ports::Xml& xml) {
  script::Structure structure = script::examine(script);
  const std::vector<KnownCommand> commands = know_commands(structure.script);
  const bool knows_keys = structure.ways_known && knows_commands(structure.faults);

  std::vector<Finding> findings;
  check_values(commands, findings);
  if (structure.ways_known) {
    const Flow flow = flow_of(structure.points);
    const FlowGroups groups = group(flow);
    check_flow(structure.script, structure.points, flow, groups, findings);
    if (knows_keys) check_variables(commands, flow, groups, xml, findings);
  }
  findings = without_allowed(script, std::move(findings), knows_keys);
  for (Finding& fault : findings_of(std::move(structure.faults))) findings.push_back(std::move(fault));
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) { return a.at < b.at; });
  return findings;
}

std::vector<Finding> check_text(const std::string& file, std::string_view text, const host::ScriptKey& key,
                                ports::Engines& engines) {
  try {
    script::PlainScript script = script::read_plain_script(file, text);
    if (script::is_enciphered(script)) {
      const std::string plain = script::decompile(script, script::TextCipher(engines.cipher(), key));
      script = script::read_plain_script(file, plain);
    }
    return check(script, engines.xml());
  } catch (const script::ScriptError& error) {
    return findings_of(error.faults());
  }
}

}  // namespace check
