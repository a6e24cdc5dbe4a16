#include <iostream>
#include <string>

#include "platform/desk/process.h"
#include "tools/ky/check/rule_pages.h"
#include "tools/ky/reference/generated_files.h"

// Writes what is made from the schema of commands and from the rules of the check into the tree; see ./dev reference.
int main(int argc, char** argv) {
  const std::vector<std::string> arguments = desk::arguments(argc, argv);
  if (arguments.size() != 1) {
    std::cerr << "usage: ky_reference_tool ROOT\n";
    return 2;
  }
  std::string failure = reference::write_generated_files(arguments[0]);
  if (failure.empty()) failure = check::write_rule_pages(arguments[0]);
  if (!failure.empty()) std::cerr << failure << '\n';
  return failure.empty() ? 0 : 1;
}
