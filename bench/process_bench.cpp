#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "installer/desktop/commands/process/close_targets.h"
#include "installer/utils/base/process/process_snapshot.h"
#include "installer/utils/base/strings/case_fold.h"

namespace bench {
namespace {

constexpr std::size_t usual = 5'000;
constexpr std::size_t tenfold = 10 * usual;
constexpr std::size_t names = 48;  // of which every third is sought in two folders: 64 targets

/// The identities of files by their paths, as a file system would answer for them.
class Identities {
 public:
  void add(std::wstring path) { table_.emplace(std::move(path), table_.size() + 1); }
  [[nodiscard]] std::uint64_t of(std::wstring_view path) const {
    const auto found = table_.find(path);
    return found == table_.end() ? 0 : found->second;
  }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>()(text); }
  };
  std::unordered_map<std::wstring, std::uint64_t, Hash, std::equal_to<>> table_;
};

/// Processes of which every fourth has a name that is sought; of these half are the suite's own, and the others run
/// from a folder whose path is as long. Every second name is not in lower case.
struct Desk {
  ky::CloseTargets targets;
  std::vector<base::process::ProcessEntry> rows;
  std::vector<std::wstring> paths;  // by row
  Identities files;

  explicit Desk(std::size_t count) {
    for (std::size_t n = 0; n < names; ++n) {
      for (std::size_t folder = 0; folder < (n % 3 == 0 ? 2 : 1); ++folder) {
        targets.Add(name(n), {false, L"\"close.exe\" /quit", folder_path(folder)});
        files.add(folder_path(folder) + name(n));
      }
      files.add(folder_path(9) + name(n));
    }
    for (std::size_t i = 0; i < count; ++i) {
      const bool sought = i % 4 == 0;
      std::wstring file = sought ? name(i / 4 % names) : L"other" + std::to_wstring(i) + L".exe";
      if (i % 8 == 0) paths.push_back(folder_path(0) + file);
      if (i % 8 != 0) paths.push_back(folder_path(9) + file);
      if (i / 4 % 2 != 0) file[0] = L'S';
      rows.push_back({file, static_cast<std::uint32_t>(4 * i + 4), 4});
    }
  }

 private:
  static std::wstring name(std::size_t n) { return L"suite" + std::to_wstring(100 + n) + L".exe"; }
  static std::wstring folder_path(std::size_t n) {
    return L"C:\\Program Files\\Tavrine\\Suite " + std::to_wstring(n) + L"\\";
  }
};

void fold(std::wstring_view name, std::wstring& out) {
  out.resize(name.size());
  for (std::size_t i = 0; i < name.size(); ++i) out[i] = base::strings::to_lower(name[i]);
}

void filter(benchmark::State& state, std::size_t count) {
  const Desk desk(count);
  for (auto _ : state) {
    state.PauseTiming();
    auto rows = desk.rows;
    state.ResumeTiming();
    ky::FilterByTargets(desk.targets, rows);
    benchmark::DoNotOptimize(rows.data());
    state.PauseTiming();
    if (rows.size() != count / 4) std::abort();
    rows = {};
    state.ResumeTiming();
  }
}
void filter_processes(benchmark::State& state) {
  filter(state, usual);
}
BENCHMARK(filter_processes)->Unit(benchmark::kMicrosecond);
void filter_ten_times(benchmark::State& state) {
  filter(state, tenfold);
}
BENCHMARK(filter_ten_times)->Unit(benchmark::kMicrosecond);

/// A hash join of names with keys, which are in lower case here, into a list of its own.
void filter_processes_floor(benchmark::State& state) {
  const Desk desk(usual);
  for (auto _ : state) {
    state.PauseTiming();
    auto rows = desk.rows;
    std::vector<base::process::ProcessEntry> kept;
    state.ResumeTiming();
    std::unordered_set<std::wstring_view> keys;
    for (const auto& row : desk.targets.Rows()) keys.insert(row.key);
    std::wstring lowered;
    for (auto& row : rows) {
      fold(row.name, lowered);
      if (keys.contains(lowered)) kept.push_back(std::move(row));
    }
    benchmark::DoNotOptimize(kept.data());
    state.PauseTiming();
    if (kept.size() != usual / 4) std::abort();
    rows = {};
    kept = {};
    state.ResumeTiming();
  }
}
BENCHMARK(filter_processes_floor)->Unit(benchmark::kMicrosecond);

void find(benchmark::State& state, std::size_t count) {
  const Desk desk(count);
  const ky::SameFileTest same_file = [&desk](const wchar_t* candidate, const wchar_t* path) {
    const std::wstring_view first(candidate), second(path);
    if (first.size() != second.size()) return false;
    const std::uint64_t identity = desk.files.of(first);
    return identity != 0 && identity == desk.files.of(second);
  };
  for (auto _ : state) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < count; ++i) {
      found += ky::FindCloseTarget(desk.targets, desk.rows[i].name, desk.paths[i], same_file).has_value() ? 1U : 0U;
    }
    if (found != count / 8) std::abort();
  }
}
void find_targets(benchmark::State& state) {
  find(state, usual);
}
BENCHMARK(find_targets)->Unit(benchmark::kMicrosecond);
void find_ten_times(benchmark::State& state) {
  find(state, tenfold);
}
BENCHMARK(find_ten_times)->Unit(benchmark::kMicrosecond);

/// A hash join of the processes' files with the targets' files by identity; names play no part.
void find_targets_floor(benchmark::State& state) {
  const Desk desk(usual);
  for (auto _ : state) {
    std::unordered_map<std::uint64_t, const ky::CloseTarget*> wanted;
    for (const auto& row : desk.targets.Rows()) {
      for (const auto& target : row.targets) wanted.emplace(desk.files.of(target.currentDir + row.key), &target);
    }
    std::size_t found = 0;
    for (const std::wstring& path : desk.paths) found += wanted.contains(desk.files.of(path)) ? 1U : 0U;
    if (found != usual / 8) std::abort();
  }
}
BENCHMARK(find_targets_floor)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
