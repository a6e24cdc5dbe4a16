#pragma once

#include <optional>
#include <string>
#include <utility>

#include "ky/install_command.h"

namespace host {

/// What a command was asked to delete, its variables expanded.
struct DeletionRequest {
  const char* kind;  // folder, registry-key or registry-value
  std::wstring path;
};

/// Base of the commands that delete: tells reports what the last run was about, since nothing that is seen of the
/// system shows a deletion whose parent is not even there.
class DeletingCommand : public ky::CInstallCommand {
 public:
  /// Nothing before a run, where the request was refused, and where it was for each user.
  [[nodiscard]] const std::optional<DeletionRequest>& asked_for() const { return asked_for_; }

 protected:
  DeletingCommand() = default;
  ~DeletingCommand() = default;

  void forget_request() { asked_for_.reset(); }
  /// `path` without a closing backslash.
  void keep_request(const char* kind, std::wstring path) {
    while (path.ends_with(L'\\')) path.pop_back();
    asked_for_ = DeletionRequest{kind, std::move(path)};
  }

 private:
  std::optional<DeletionRequest> asked_for_;
};

}  // namespace host
