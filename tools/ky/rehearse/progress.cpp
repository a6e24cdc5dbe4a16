#include "tools/ky/rehearse/progress.h"

#include <ostream>

namespace rehearsal {

namespace {
constexpr char clear_line[] = "\r\x1b[2K";
}

void ProgressLine::show(std::size_t number, const std::string& name) {
  if (!terminal_) return;
  out_ << clear_line << "  " << number << " of " << commands_ << "  " << name << std::flush;
  shown_ = true;
}

void ProgressLine::clear() {
  if (shown_) out_ << clear_line << std::flush;
  shown_ = false;
}

}  // namespace rehearsal
