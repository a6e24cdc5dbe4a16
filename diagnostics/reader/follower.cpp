#include "diagnostics/reader/follower.h"

#include <deque>

#include "diagnostics/reader/log_reader.h"
#include "diagnostics/reader/run_keys.h"
#include "platform/desk/desk.h"

namespace diagnostics::reader {

namespace {

constexpr std::size_t piece = 16384;

/// A run's newest file of those in a folder; nothing where it holds no logs.
std::optional<LogName> newest_run(const std::string& folder) {
  std::optional<LogName> newest;
  for (const std::string& path : files_of_folder(folder)) {
    const auto name = parse_log_name(desk::place_of(path).name);
    if (name && (!newest || reads_before(*newest, *name))) newest = name;
  }
  return newest;
}

}  // namespace

Follower::Follower(const std::string& path, const Settings& settings, RecordSink& sink)
    : settings_(settings), sink_(sink), folder_(path) {
  if (desk::is_folder(path)) {
    run_ = newest_run(path);
  } else {
    const desk::Place place = desk::place_of(path);
    folder_ = place.folder;
    run_ = parse_log_name(place.name);
  }
  if (run_) {
    sink_.begin_run(run_->stem);
  } else {
    sink_.problem({ProblemKind::file, path, 0, 0, "it is no log of a run, and none that can be followed"});
  }
}

bool Follower::poll() {
  if (!run_) return false;
  look();
  const bool grown = read_grown(End::growing);
  idle_ = grown || merged_.empty() ? 0 : idle_ + 1;
  if (merged_.empty() || (threads_on_disk_ && idle_ < patience)) return true;
  // What was written last may have come between the look at the files and that at the folder.
  (void)read_grown(End::file);
  read_rest();
  return false;
}

/// Takes in which files of the run there are.
void Follower::look() {
  std::vector<std::string> names;
  threads_on_disk_ = false;
  if (!desk::list_files(folder_, names).empty()) return;
  for (const std::string& name : names) {
    const auto parsed = parse_log_name(name);
    if (!parsed || !same_run(*parsed, *run_)) continue;
    const std::string path = desk::join(folder_, name);
    if (parsed->merged()) {
      merged_ = path;
    } else {
      threads_on_disk_ = true;
      add(path, *parsed);
    }
  }
}

void Follower::add(const std::string& path, const LogName& name) {
  Followed& followed = threads_[*name.thread];
  if (followed.log != nullptr || followed.given_up) return;
  Problem problem;
  // It may have gone since, into the merged file.
  if (followed.file == nullptr) followed.file = open_log(path, problem);
  if (followed.file == nullptr) return;
  if (!begin(followed)) return;
  const Extent none{followed.file->records_begin, followed.file->records_begin, End::growing};
  followed.log = std::make_unique<ThreadLog>(
      followed.file->path, make_cursor(*followed.file, settings_, none, piece, report_to(sink_, *followed.file)),
      name.thread);
}

/// Finds the key of a file. False where it cannot be read, or not yet.
bool Follower::begin(Followed& followed) {
  LogFile& file = *followed.file;
  // Its first bytes may not have been there when it was opened.
  file.form = run_->sealed ? Form::sealed : Form::fall_back;
  if (file.form == Form::fall_back) return true;
  ProblemKind kind = ProblemKind::no_key;
  std::string text = "it is sealed, and no private key was given";
  if (settings_.keys != nullptr) {
    const HeaderState state = read_key_header(file, *settings_.keys);
    if (state == HeaderState::torn) return false;
    if (state != HeaderState::closed) return true;
    kind = ProblemKind::wrong_key;
    text = "the private key does not open it";
  }
  followed.given_up = true;
  sink_.problem({kind, file.path, 0, 0, std::move(text)});
  return false;
}

/// Gives what the thread files hold beyond what was read. False where they have not grown.
bool Follower::read_grown(End what) {
  ThreadLogs logs;
  bool grown = false;
  for (auto& [thread, followed] : threads_) {
    std::uint64_t length = 0;
    if (followed.log == nullptr || !followed.file->source.length(length).empty()) continue;
    grown = grown || length != followed.file->length;
    followed.file->length = length;
    followed.log->cursor().extend(length, what);
    logs.push_back(followed.log.get());
  }
  read_timeline(logs, sink_);
  return grown;
}

/// Reads the threads that came and went unseen out of the merged file.
void Follower::read_rest() {
  Problem problem;
  LogFiles files;
  files.push_back(open_log(merged_, problem));
  if (files.front() == nullptr) {
    sink_.problem(problem);
    return;
  }
  open_keys(files, settings_, sink_);
  const LogFile* const merged = files.front().get();
  if (!merged->readable()) return;
  const Extent whole{merged->records_begin, merged->length, End::file};
  ThreadLog all(merged->path, make_cursor(*merged, settings_, whole, piece, nullptr), std::nullopt);
  std::deque<ThreadLog> rest;
  ThreadLogs logs;
  for (const Segment& segment : find_segments(all, whole)) {
    const auto known = threads_.find(segment.thread);
    if (known != threads_.end() && (known->second.log != nullptr || known->second.given_up)) continue;
    const Extent extent{segment.begin, segment.end, segment.end == whole.end ? End::file : End::part};
    auto cursor = make_cursor(*merged, settings_, extent, piece, report_to(sink_, *merged));
    logs.push_back(&rest.emplace_back(merged->path, std::move(cursor), std::nullopt));
  }
  read_timeline(logs, sink_);
}

}  // namespace diagnostics::reader
