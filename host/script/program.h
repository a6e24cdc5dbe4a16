#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ky/install_command.h"

namespace host {

using CommandOwner = std::unique_ptr<ky::CInstallCommand, ky::Releaser>;

/// One loaded command.
struct ProgramStep {
  std::string name;         // the element's, deciphered
  std::int32_t index = -1;  // as the command itself answers after its load
  CommandOwner command;
};

/// A loaded script: its commands in document order. Releases them when it goes.
class Program {
 public:
  /// Makes room for that many commands.
  void reserve(std::size_t count);

  /// False, and `step` is dropped, where its index is taken.
  [[nodiscard]] bool add(ProgramStep step);

  [[nodiscard]] const std::vector<ProgramStep>& steps() const { return steps_; }
  /// The position in `steps` of the command with this index.
  [[nodiscard]] std::optional<std::size_t> find(std::int32_t index) const;
  /// The greatest index; -1 without commands.
  [[nodiscard]] std::int32_t last_index() const { return last_index_; }

 private:
  std::vector<ProgramStep> steps_;
  std::unordered_map<std::int32_t, std::size_t> positions_;
  std::int32_t last_index_ = -1;
};

}  // namespace host
