#include "tools/ky/check/check_files.h"

#include <picojson.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "tools/ky/bad_input.h"
#include "tools/ky/check/checker.h"
#include "tools/ky/check/rule_pages.h"
#include "tools/ky/check/rules.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/script/script_files.h"

namespace check {

namespace {

using picojson::value;

struct CheckedFile {
  std::string name;
  std::vector<Finding> findings;
};

Severity severity_of(const Finding& finding) {
  return find_rule(finding.rule)->severity;
}

value number(std::size_t count) {
  return value(static_cast<double>(count));
}

/// A message in one line: a control character that came from the script is shown as its reference.
std::string one_line(const std::string& message) {
  std::string line;
  for (const char c : message) {
    if (static_cast<unsigned char>(c) < 0x20) {
      line += "&#" + std::to_string(static_cast<int>(c)) + ';';
    } else {
      line += c;
    }
  }
  return line;
}

void print(const CheckedFile& file, std::ostream& out) {
  for (const Finding& finding : file.findings) {
    out << file.name << ':' << finding.at.line << ':' << finding.at.column << ": " << name_of(severity_of(finding))
        << ": " << one_line(finding.message) << " [" << finding.rule << "]\n";
  }
}

void print_json(const std::vector<CheckedFile>& files, std::ostream& out) {
  value::array all;
  for (const CheckedFile& file : files) {
    value::array findings;
    for (const Finding& finding : file.findings) {
      findings.emplace_back(value::object{{"line", number(finding.at.line)},
                                          {"column", number(finding.at.column)},
                                          {"severity", value(std::string(name_of(severity_of(finding))))},
                                          {"rule", value(std::string(finding.rule))},
                                          {"message", value(finding.message)}});
    }
    all.emplace_back(value::object{{"file", value(file.name)}, {"findings", value(findings)}});
  }
  out << value(value::object{{"files", value(all)}}).serialize(true);
}

void print_rules(std::ostream& out) {
  for (const Rule& rule : all_rules()) {
    out << rule.name << " (" << name_of(rule.severity) << "): " << rule.summary << "\n    " << page_of(rule) << '\n';
  }
}

void print_rules_json(std::ostream& out) {
  value::array rules;
  for (const Rule& rule : all_rules()) {
    rules.emplace_back(value::object{{"rule", value(std::string(rule.name))},
                                     {"severity", value(std::string(name_of(rule.severity)))},
                                     {"summary", value(std::string(rule.summary))},
                                     {"page", value(page_of(rule))}});
  }
  out << value(value::object{{"rules", value(rules)}}).serialize(true);
}

bool has_error(const CheckedFile& file) {
  return std::any_of(file.findings.begin(), file.findings.end(),
                     [](const Finding& finding) { return severity_of(finding) == Severity::error; });
}

}  // namespace

int check_files(const workbench::ScriptCheckOptions& options, const host::ScriptKey& key, std::ostream& out,
                std::ostream& err) {
  if (options.rules) {
    options.json ? print_rules_json(out) : print_rules(out);
    return 0;
  }
  workbench::DeskEngines desk;
  std::vector<CheckedFile> files;
  bool all_read = true;
  for (const std::string& name : options.files) {
    try {
      files.push_back({name, check_text(name, script::read_script_text(name), key, desk.engines())});
    } catch (const workbench::BadInput& refused) {
      err << refused.what() << '\n';
      all_read = false;
    }
  }
  if (options.json) {
    print_json(files, out);
  } else {
    for (const CheckedFile& file : files) print(file, out);
  }
  return all_read && std::none_of(files.begin(), files.end(), has_error) ? 0 : 1;
}

}  // namespace check
