#include "tools/ky/script/script_error.h"

#include <algorithm>
#include <utility>

namespace script {

namespace {

std::vector<Fault> sorted(std::vector<Fault> faults) {
  std::stable_sort(faults.begin(), faults.end(), [](const Fault& a, const Fault& b) { return a.at < b.at; });
  return faults;
}

std::string lines_of(const std::string& file, const std::vector<Fault>& faults) {
  std::string lines;
  for (const Fault& fault : faults) {
    if (!lines.empty()) lines += '\n';
    lines += file + ':' + std::to_string(fault.at.line) + ':' + std::to_string(fault.at.column) + ": " + fault.reason;
  }
  return lines;
}

}  // namespace

ScriptError::ScriptError(const std::string& file, std::vector<Fault> faults)
    : BadInput(lines_of(file, sorted(faults))), faults_(sorted(std::move(faults))) {}

}  // namespace script
