#include "tools/ky/rehearse/output_folder.h"

#include "platform/desk/desk.h"
#include "tools/ky/bad_input.h"

namespace rehearsal {

void OutputFolder::make() const {
  if (!path_) return;
  if (const std::string reason = desk::make_folders(*path_); !reason.empty()) throw workbench::BadInput(reason);
}

std::string OutputFolder::write(const std::string& name, std::string_view bytes) {
  if (!path_) return {};
  std::string reason = desk::write_file(desk::join(*path_, name), bytes);
  if (reason.empty()) files_.push_back(name);
  return reason;
}

}  // namespace rehearsal
