#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rehearsal {

/// The folder that receives a run's files. Without one nothing is written.
class OutputFolder {
 public:
  explicit OutputFolder(std::optional<std::string> path) : path_(std::move(path)) {}

  /// Makes the folder, once it is sure that something will be written. Throws `workbench::BadInput` where that fails.
  void make() const;

  /// Writes one file whole. Gives the empty string or, in one line, what went wrong.
  [[nodiscard]] std::string write(const std::string& name, std::string_view bytes);

  /// A file that lies there already, for `files`.
  void add(std::string name) { files_.push_back(std::move(name)); }

  [[nodiscard]] std::string path() const { return path_.value_or(""); }
  /// Names of the files that were written.
  [[nodiscard]] const std::vector<std::string>& files() const { return files_; }

 private:
  std::optional<std::string> path_;
  std::vector<std::string> files_;
};

}  // namespace rehearsal
