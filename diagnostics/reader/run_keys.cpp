#include "diagnostics/reader/run_keys.h"

#include <algorithm>

#include "platform/desk/desk.h"

namespace diagnostics::reader {

namespace {

void tell(RecordSink& sink, const LogFile& file, ProblemKind kind, std::uint64_t bytes, std::string text) {
  sink.problem({kind, file.path, 0, bytes, std::move(text)});
}

/// A file with the run's key that lies beside one of `files`; null where there is none.
std::unique_ptr<LogFile> find_sibling(const LogFile& file, const KeyOpener& keys) {
  const std::string folder = desk::place_of(file.path).folder;
  std::vector<std::string> names;
  if (!file.name || !desk::list_files(folder, names).empty()) return nullptr;
  for (const std::string& name : names) {
    const auto parsed = parse_log_name(name);
    Problem unheard;
    if (!parsed || !same_run(*parsed, *file.name)) continue;
    std::unique_ptr<LogFile> sibling = open_log(desk::join(folder, name), unheard);
    if (sibling == nullptr || sibling->form != Form::sealed) continue;
    (void)read_key_header(*sibling, keys);
    if (sibling->readable()) return sibling;
  }
  return nullptr;
}

/// Whether several files hold one wrapped key, which damage would not do.
std::string reason_of_closure(const LogFiles& files, const LogFile& file) {
  const auto same = std::count_if(files.begin(), files.end(),
                                  [&](const auto& other) { return other->key.wrapped == file.key.wrapped; });
  if (same > 1) return "the private key is another log's: it does not open the key that all files of the run hold";
  return "the private key does not open it: it is another log's, or the key header is damaged, and no other file of "
         "the run is there to tell";
}

void tell_no_key(const LogFiles& files, RecordSink& sink) {
  for (const std::unique_ptr<LogFile>& file : files) {
    if (file->form != Form::sealed) continue;
    tell(sink, *file, ProblemKind::no_key, file->length, "it is sealed, and no private key was given");
  }
}

}  // namespace

void open_keys(const LogFiles& files, const Settings& settings, RecordSink& sink) {
  if (settings.keys == nullptr) {
    tell_no_key(files, sink);
    return;
  }
  const KeyOpener& keys = *settings.keys;
  const LogFile* donor = nullptr;
  std::vector<LogFile*> closed;
  for (const std::unique_ptr<LogFile>& file : files) {
    if (file->form != Form::sealed) continue;
    const HeaderState state = read_key_header(*file, keys);
    if (state == HeaderState::torn) {
      tell(sink, *file, ProblemKind::cut_short, file->length, "cut short: the file ends inside its key header");
      continue;
    }
    if (state == HeaderState::opened_damaged) {
      tell(sink, *file, ProblemKind::key_header, log_format::length_size, "the key header's length field is damaged");
    }
    if (file->readable()) {
      donor = file.get();
    } else {
      closed.push_back(file.get());
    }
  }
  std::unique_ptr<LogFile> sibling;
  if (donor == nullptr && !closed.empty()) sibling = find_sibling(*closed.front(), keys);
  if (sibling != nullptr) donor = sibling.get();
  for (LogFile* const file : closed) {
    if (donor == nullptr) {
      tell(sink, *file, ProblemKind::wrong_key, file->length, reason_of_closure(files, *file));
      continue;
    }
    file->key = donor->key;
    tell(sink, *file, ProblemKind::key_header, file->records_begin,
         "the key header is damaged; the key is that of " + donor->path);
  }
}

}  // namespace diagnostics::reader
