#include "diagnostics/reader/log_reader.h"

#include <algorithm>
#include <deque>
#include <map>

#include "diagnostics/reader/run_keys.h"
#include "diagnostics/reader/timeline.h"
#include "platform/desk/desk.h"

namespace diagnostics::reader {

namespace {

constexpr std::size_t memory_for_pieces = std::size_t{8} << 20;
constexpr std::size_t min_piece = 4096;
constexpr std::size_t max_piece = 65536;

/// A part of a file that one cursor reads.
struct Part {
  const LogFile* file = nullptr;
  Extent extent;
  std::optional<std::uint32_t> thread;  // of a thread's own file
  std::uint32_t order = 0;              // thread id, or that of the thread before
};

/// The files of one run on their way to the sink.
class RunReader {
 public:
  RunReader(LogFiles files, const Settings& settings, RecordSink& sink)
      : files_(std::move(files)), settings_(settings), sink_(sink) {}

  void read() {
    open_keys(files_, settings_, sink_);
    for (const std::unique_ptr<LogFile>& file : files_) {
      if (file->readable()) add_parts(*file);
    }
    drop_doubles();
    std::stable_sort(parts_.begin(), parts_.end(), [](const Part& a, const Part& b) { return a.order < b.order; });
    const std::size_t piece =
        std::clamp(memory_for_pieces / std::max<std::size_t>(1, parts_.size()), min_piece, max_piece);
    std::deque<ThreadLog> owned;
    ThreadLogs logs;
    for (const Part& part : parts_) {
      auto cursor = make_cursor(*part.file, settings_, part.extent, piece, report_to(sink_, *part.file));
      logs.push_back(&owned.emplace_back(part.file->path, std::move(cursor), part.thread));
    }
    settings_.by_thread ? read_in_order(logs, sink_) : read_timeline(logs, sink_);
    tell_wrong_algorithm(logs);
  }

 private:
  void add_parts(const LogFile& file) {
    const Extent whole{file.records_begin, file.length, End::file};
    if (file.length == 0) sink_.problem({ProblemKind::cut_short, file.path, 0, 0, "cut short: the file is empty"});
    if (file.name && file.name->thread) {
      parts_.push_back({&file, whole, file.name->thread, *file.name->thread});
      return;
    }
    // Read in the order of the file, one that is alone needs no look ahead.
    if (settings_.by_thread && files_.size() == 1) {
      parts_.push_back({&file, whole, std::nullopt, 0});
      return;
    }
    ThreadLog log(file.path, make_cursor(file, settings_, whole, max_piece, nullptr), std::nullopt);
    std::uint32_t order = 0;
    for (const Segment& segment : find_segments(log, whole)) {
      if (segment.thread != 0) order = segment.thread;
      const End end = segment.end == whole.end ? End::file : End::part;
      parts_.push_back({&file, {segment.begin, segment.end, end}, std::nullopt, order});
      if (segment.thread != 0) merged_[segment.thread] = segment.end - segment.begin;
    }
  }

  /// A thread's file that could not be removed after the merge holds what the merged file holds.
  void drop_doubles() {
    std::erase_if(parts_, [&](const Part& part) {
      if (!part.thread) return false;
      const auto merged = merged_.find(*part.thread);
      if (merged == merged_.end() || merged->second < part.extent.end - part.extent.begin) return false;
      sink_.problem({ProblemKind::note, part.file->path, 0, 0, "its records are read from the merged file"});
      return true;
    });
    // One that is longer was cut while it was merged.
    for (const Part& own : std::vector<Part>(parts_)) {
      if (!own.thread || merged_.count(*own.thread) == 0) continue;
      std::erase_if(parts_, [&](const Part& part) { return !part.thread && part.order == *own.thread; });
    }
  }

  void tell_wrong_algorithm(const ThreadLogs& logs) {
    if (std::any_of(logs.begin(), logs.end(), [](const ThreadLog* log) { return log->records() > 0; })) return;
    for (const std::unique_ptr<LogFile>& file : files_) {
      if (file->form != Form::sealed || !file->readable() || file->length <= file->records_begin) continue;
      sink_.problem({ProblemKind::wrong_key, file->path, file->records_begin, file->length - file->records_begin,
                     "the key opens, but none of the records can be read with it: was the algorithm another one?"});
    }
  }

  const LogFiles files_;
  const Settings& settings_;
  RecordSink& sink_;
  std::vector<Part> parts_;
  std::map<std::uint32_t, std::uint64_t> merged_;  // bytes of each thread in the merged file
};

/// A path and what its name tells.
struct NamedPath {
  std::string path;
  std::optional<LogName> name;
};
using Run = std::vector<NamedPath>;

bool belongs(const NamedPath& file, const Run& run) {
  const NamedPath& first = run.front();
  return file.name && first.name && desk::place_of(file.path).folder == desk::place_of(first.path).folder &&
         same_run(*file.name, *first.name);
}

std::vector<Run> runs_of(const std::vector<std::string>& paths) {
  Run files;
  for (const std::string& path : paths) {
    const bool known =
        std::any_of(files.begin(), files.end(), [&](const NamedPath& file) { return file.path == path; });
    if (!known) files.push_back({path, parse_log_name(desk::place_of(path).name)});
  }
  std::stable_sort(files.begin(), files.end(), [](const NamedPath& a, const NamedPath& b) {
    if (!a.name || !b.name) return a.name.has_value() && !b.name;
    return reads_before(*a.name, *b.name);
  });
  std::vector<Run> runs;
  for (NamedPath& file : files) {
    auto run = std::find_if(runs.begin(), runs.end(), [&](const Run& known) { return belongs(file, known); });
    if (run == runs.end()) run = runs.insert(runs.end(), Run());
    run->push_back(std::move(file));
  }
  return runs;
}

}  // namespace

void read_logs(const std::vector<std::string>& paths, const Settings& settings, RecordSink& sink) {
  for (const Run& run : runs_of(paths)) {
    sink.begin_run(run.front().name ? run.front().name->stem : run.front().path);
    LogFiles files;
    for (const NamedPath& file : run) {
      Problem problem;
      if (std::unique_ptr<LogFile> opened = open_log(file.path, problem); opened != nullptr) {
        files.push_back(std::move(opened));
      } else {
        sink.problem(problem);
      }
    }
    RunReader(std::move(files), settings, sink).read();
  }
}

std::vector<std::string> files_of_folder(const std::string& folder) {
  std::vector<std::string> names;
  std::vector<std::string> paths;
  if (!desk::list_files(folder, names).empty()) return {folder};
  for (const std::string& name : names) {
    if (parse_log_name(name)) paths.push_back(desk::join(folder, name));
  }
  return paths;
}

std::vector<std::string> files_of_run(const std::string& path) {
  const desk::Place place = desk::place_of(path);
  const auto wanted = parse_log_name(place.name);
  std::vector<std::string> paths;
  for (const std::string& file : wanted ? files_of_folder(place.folder) : std::vector<std::string>()) {
    if (same_run(*wanted, parse_log_name(desk::place_of(file).name).value_or(LogName()))) paths.push_back(file);
  }
  return paths.empty() ? std::vector<std::string>{path} : paths;
}

}  // namespace diagnostics::reader
