#include "installer/desktop/commands/process/close_targets.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "installer/utils/base/strings/case_fold.h"

namespace ky {

namespace {

void LowerCaseInto(std::wstring_view name, std::wstring& out) {
  out.resize(name.size());
  std::transform(name.begin(), name.end(), out.begin(), base::strings::to_lower);
}

}  // namespace

void CloseTargets::Add(std::wstring key, CloseTarget target) {
  const auto [place, is_new] = places_.try_emplace(key, rows_.size());
  if (is_new) rows_.push_back({std::move(key), {}});
  rows_[place->second].targets.push_back(std::move(target));
}

const std::vector<CloseTarget>* CloseTargets::Find(const std::wstring& key) const {
  const auto place = places_.find(key);
  return place == places_.end() ? nullptr : &rows_[place->second].targets;
}

std::wstring LowerCased(std::wstring_view name) {
  std::wstring lowered;
  LowerCaseInto(name, lowered);
  return lowered;
}

void FilterByTargets(const CloseTargets& targets, std::vector<base::process::ProcessEntry>& rows) {
  // Names that are equal as they stand are equal in lower case as well, so that one look-up answers both.
  std::unordered_set<std::wstring> keys;
  for (const CloseTargets::Row& row : targets.Rows()) keys.insert(LowerCased(row.key));
  std::wstring lowered;
  std::erase_if(rows, [&](const base::process::ProcessEntry& row) {
    if (row.pid == 0) return true;
    LowerCaseInto(row.name, lowered);
    return !keys.contains(lowered);
  });
}

std::optional<FoundCloseTarget> FindCloseTarget(const CloseTargets& targets, const std::wstring& name,
                                                const std::wstring& path, const SameFileTest& same_file) try {
  std::wstring spelling = name;
  std::wstring file;
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (const auto* const found = targets.Find(spelling); found != nullptr) {
      for (const CloseTarget& target : *found) {
        file.assign(target.currentDir).append(spelling);
        if (same_file(file.c_str(), path.c_str())) return FoundCloseTarget{&target, std::move(file)};
      }
    }
    LowerCaseInto(name, spelling);
    if (spelling == name) break;
  }
  return std::nullopt;
} catch (...) {
  return std::nullopt;
}

}  // namespace ky
