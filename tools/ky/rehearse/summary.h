#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/ky/receipt/receipt.h"
#include "tools/ky/rehearse/outcome.h"

namespace rehearsal {

/// What the summary's head and foot say besides the outcome.
struct SummaryFrame {
  std::string title;               // such as "Rehearsal of samples/scripts/a.xml on suite.json"
  std::string folder;              // where the files lie, empty where none were written
  std::vector<std::string> files;  // their names in it
};

/// The run at a glance: commands run and skipped, changes by kind, who was closed, terminated or left alone, each
/// deletion and whether the thing was there, the return code and where the files lie. A receipt, where there is one,
/// stands for the deletions that failed: its counts, and each line of what is still there or could not be named. UTF-8.
void print_summary(const SummaryFrame& frame, const Outcome& outcome, const receipt::Receipt* receipt,
                   std::ostream& out);

}  // namespace rehearsal
