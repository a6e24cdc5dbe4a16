#include "host/script/command_rules.h"

#include <algorithm>

#include "installer/utils/base/strings/utf8.h"
#include "ky/factories.h"

namespace host {

namespace {

constexpr CommandRule rules[] = {
    {"ClearOldLogs"},
    {"CrashHandler"},
    {"DeleteFile", {L"pathFile"}},
    {"DeleteFolder", {L"path"}},
    {"DeleteRegKey", {L"base", L"subkey"}},
    {"DeleteRegValue", {L"base", L"subkey", L"value"}},
    {"Jump", {L"condition", L"target"}},
    {"LoadFilesFromResources"},
    {"Logger"},
    {"Nop"},
    {"PathExists", {L"path", L"variable"}},
    {"RunCommand", {L"command"}},
    {"SetProgress", {}, {L"value", L"max"}},
    {"SetVariable", {L"var"}, {L"value", L"strValue"}},
};

constexpr bool has_rule(std::string_view stem) {
  return std::any_of(std::begin(rules), std::end(rules), [stem](const CommandRule& rule) { return rule.stem == stem; });
}
#define KY_ASSERT_RULE(stem, command) static_assert(has_rule(#stem), "give " #stem " a row in the table of rules");
KY_FACTORIES(KY_ASSERT_RULE)
#undef KY_ASSERT_RULE

bool holds(std::span<const std::wstring> attributes, std::wstring_view name) {
  return std::find(attributes.begin(), attributes.end(), name) != attributes.end();
}

}  // namespace

const CommandRule* rule_of(std::string_view stem) {
  const auto* const found =
      std::find_if(std::begin(rules), std::end(rules), [stem](const CommandRule& rule) { return rule.stem == stem; });
  return found == std::end(rules) ? nullptr : found;
}

std::string missing_attribute(const CommandRule& rule, std::span<const std::wstring> attributes) {
  for (const std::wstring_view name : rule.required) {
    if (!name.empty() && !holds(attributes, name)) {
      return "lacks the attribute \"" + base::strings::to_utf8(name) + '"';
    }
  }
  const auto [first, second] = rule.one_of;
  if (!first.empty() && !holds(attributes, first) && !holds(attributes, second)) {
    return "lacks both attributes \"" + base::strings::to_utf8(first) + "\" and \"" + base::strings::to_utf8(second) +
           '"';
  }
  return {};
}

}  // namespace host
