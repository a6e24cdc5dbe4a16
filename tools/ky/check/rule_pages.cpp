#include "tools/ky/check/rule_pages.h"

#include "platform/desk/desk.h"
#include "tools/ky/script/plain_script.h"

namespace check {

namespace {

constexpr std::string_view generated_note =
    "<!-- Generated from tools/ky/check/rules.cpp and the examples beside it by `./dev reference`. -->\n\n";

std::string fenced(std::string_view script) {
  std::string text = "```xml\n" + std::string(script);
  if (!text.ends_with('\n')) text += '\n';
  return text + "```\n";
}

}  // namespace

std::string page_of(const Rule& rule) {
  return "docs/rules/" + std::string(rule.name) + ".md";
}

std::string rule_page(const Rule& rule, std::string_view bad, std::string_view good) {
  std::string page = std::string(generated_note) + "# " + std::string(rule.name) + "\n\n";
  page.append(name_of(rule.severity)).append(": ").append(rule.summary).append("\n\n");
  page.append("## Why\n\n").append(rule.reason).append("\n\n");
  page.append("## What to do\n\n").append(rule.remedy).append("\n\n");
  page.append("## Reported\n\n").append(fenced(bad)).append("\n## Not reported\n\n").append(fenced(good));
  return page;
}

std::string rule_index() {
  std::string index =
      std::string(generated_note) +
      "# Rules of `ky script check`\n\n"
      "An error is a script that is refused, stops, or has a command that cannot do its work. A warning is one that "
      "runs, and probably not as it is meant. In the examples `expect` tells line and column of what is reported.\n\n"
      "| Rule | Severity | What is reported |\n|---|---|---|\n";
  for (const Rule& rule : all_rules()) {
    const std::string name(rule.name);
    index += "| [" + name + "](" + name + ".md) | " + std::string(name_of(rule.severity)) + " | " +
             std::string(rule.summary) + " |\n";
  }
  return index;
}

std::string write_rule_pages(const std::string& root) {
  const auto at = [&root](const std::string& path) { return desk::join(root, path); };
  std::string failure = desk::make_folders(at("docs/rules"));
  if (failure.empty()) failure = desk::write_file(at("docs/rules/README.md"), rule_index());
  for (const Rule& rule : all_rules()) {
    const std::string folder = "tools/ky/check/examples/" + std::string(rule.name);
    std::string bad;
    std::string good;
    if (failure.empty()) failure = desk::read_file(at(folder + "/bad.xml"), script::max_script_size, bad);
    if (failure.empty()) failure = desk::read_file(at(folder + "/good.xml"), script::max_script_size, good);
    if (failure.empty()) failure = desk::write_file(at(page_of(rule)), rule_page(rule, bad, good));
  }
  return failure;
}

}  // namespace check
