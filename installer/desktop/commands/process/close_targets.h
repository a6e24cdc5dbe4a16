#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "installer/utils/base/process/process_snapshot.h"

namespace ky {

/// How one program of the product is asked to close, and where its file lies.
struct CloseTarget {
  bool limited = false;  // the request runs as the desktop user
  std::wstring cmd;      // limited: the arguments of the program itself; otherwise a whole command line; may be empty
  std::wstring currentDir;  // the folder of the file; the key is appended as it stands
};

/// The targets by their key: a process name as a snapshot shows it, in lower case where its folder ignores case. Keys
/// keep the order of their first appearance, the targets of one key that of their arrival.
class CloseTargets {
 public:
  struct Row {
    std::wstring key;
    std::vector<CloseTarget> targets;
  };

  void Add(std::wstring key, CloseTarget target);
  [[nodiscard]] const std::vector<Row>& Rows() const { return rows_; }
  /// The targets under exactly this key; null without any.
  [[nodiscard]] const std::vector<CloseTarget>* Find(const std::wstring& key) const;

 private:
  std::vector<Row> rows_;
  std::unordered_map<std::wstring, std::size_t> places_;
};

/// `name` with ASCII letters in lower case.
[[nodiscard]] std::wstring LowerCased(std::wstring_view name);

/// Keeps the rows whose name is that of a key, case aside, and whose id is not 0, in their order. Linear in the rows.
void FilterByTargets(const CloseTargets& targets, std::vector<base::process::ProcessEntry>& rows);

/// Whether two paths name one file, as `base::fs::SameFile` answers it.
using SameFileTest = std::function<bool(const wchar_t* candidate, const wchar_t* path)>;

/// A process that was recognised: what to do with it, and the file that it was recognised by.
struct FoundCloseTarget {
  const CloseTarget* target = nullptr;  // lives as long as the targets stay unchanged
  std::wstring file;
};

/// The first target whose file is the one at `path`: those under `name` as it stands, then those under it in lower
/// case. Nothing where there is none, also where `same_file` throws.
[[nodiscard]] std::optional<FoundCloseTarget> FindCloseTarget(const CloseTargets& targets, const std::wstring& name,
                                                              const std::wstring& path, const SameFileTest& same_file);

}  // namespace ky
