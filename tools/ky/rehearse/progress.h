#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

namespace rehearsal {

/// One line on a terminal that is written over again and again; nothing anywhere else.
class ProgressLine {
 public:
  ProgressLine(std::ostream& out, bool terminal, std::size_t commands)
      : out_(out), terminal_(terminal), commands_(commands) {}
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Command number `number` of the run begins. A run with loops has more than the script has commands.
  void show(std::size_t number, const std::string& name);
  void clear();

 private:
  std::ostream& out_;
  bool terminal_;
  std::size_t commands_;
  bool shown_ = false;
};

}  // namespace rehearsal
