#include "platform/record/recording_files.h"

#include "platform/ports/codes.h"
#include "platform/ports/environment.h"
#include "platform/record/log_names.h"
#include "platform/record/paths.h"

namespace record {

namespace {

/// Whether opening a file this way may make it or change what it holds.
bool may_write(std::uint32_t access, ports::Disposition disposition) {
  return disposition != ports::Disposition::open_existing || (access & ports::file_access::generic_write) != 0;
}

}  // namespace

void RecordingFiles::watch(const wchar_t* path) {
  if (path == nullptr) return;
  const KeptError kept(errors_);
  ledger_.watch_path(path);
}

std::string RecordingFiles::kind_of(const std::wstring& path, const char* otherwise) {
  const KeptError kept(errors_);
  const std::optional<State> state = look_at_path(system_, path);
  return state ? state->kind : otherwise;
}

bool RecordingFiles::note_deletion(const std::string& kind, const std::wstring& path, bool done) {
  const KeptError kept(errors_);
  ledger_.add_path_deletion(kind, path, done ? ports::code::success : errors_.last());
  return done;
}

ports::Handle RecordingFiles::open(const wchar_t* path, std::uint32_t access, std::uint32_t share,
                                   ports::Disposition disposition, std::uint32_t flags) {
  if (path == nullptr) return inner_.open(path, access, share, disposition, flags);
  if (may_write(access, disposition)) {
    const KeptError kept(errors_);
    ledger_.watch_content(path);
  }
  const ports::Handle file = inner_.open(path, access, share, disposition, flags);
  if (file != ports::Handle::invalid) {
    ledger_.name(file, path);
  } else if ((access & ports::file_access::erase) != 0) {
    // Whoever asks for the right to delete is about to: that there is nothing, or that it is held, shows here.
    note_deletion(kind_of(path, (flags & ports::open_flag::backup_semantics) != 0 ? "folder" : "file"), path, false);
  }
  return file;
}

bool RecordingFiles::mark_deleted(ports::Handle file) {
  const std::optional<std::wstring> path = ledger_.named(file);
  if (!path) return inner_.mark_deleted(file);
  watch(path->c_str());
  const std::string kind = kind_of(*path, "file");
  return note_deletion(kind, *path, inner_.mark_deleted(file));
}

bool RecordingFiles::set_attributes_of(ports::Handle file, std::uint32_t attributes) {
  if (const auto path = ledger_.named(file)) watch(path->c_str());
  return inner_.set_attributes_of(file, attributes);
}

bool RecordingFiles::set_attributes(const wchar_t* path, std::uint32_t attributes) {
  watch(path);
  return inner_.set_attributes(path, attributes);
}

/// Whether it is a file of this run's log, or by its place and name one of an older log.
bool RecordingFiles::is_log(const wchar_t* path) {
  if (path == nullptr) return false;
  const KeptError kept(errors_);
  if (ledger_.is_own_log(path)) return true;
  const std::wstring plain = plain_path(path);
  const std::size_t slash = plain.rfind(L'\\');
  if (slash == std::wstring::npos || !is_log_name(std::wstring_view(plain).substr(slash + 1))) return false;
  const std::wstring folder = system_.environment.folder(ports::KnownFolder::common_app_data);
  return folded(plain.substr(0, slash)) == folded(plain_path(folder));
}

bool RecordingFiles::remove(const wchar_t* path) {
  if (is_log(path)) {
    ledger_.add_log(path, false);
    return inner_.remove(path);
  }
  watch(path);
  const bool done = inner_.remove(path);
  return path == nullptr ? done : note_deletion("file", path, done);
}

bool RecordingFiles::remove_folder(const wchar_t* path) {
  watch(path);
  const bool done = inner_.remove_folder(path);
  return path == nullptr ? done : note_deletion("folder", path, done);
}

bool RecordingFiles::create_folder(const wchar_t* path) {
  watch(path);
  return inner_.create_folder(path);
}

bool RecordingFiles::create_link(const wchar_t* link, const wchar_t* target, bool to_folder) {
  watch(link);
  return inner_.create_link(link, target, to_folder);
}

void RecordingFiles::watch_tree(const wchar_t* from, const wchar_t* to) {
  const KeptError kept(errors_);
  ledger_.watch_path(from);
  ledger_.watch_content(to);
  const auto state = look_at_path(system_, from);
  if (!state || state->kind != "folder") return;
  for (const std::wstring& below : tree_below(system_, from)) {
    ledger_.watch_path(joined(from, below));
    ledger_.watch_path(joined(to, below));
  }
}

bool RecordingFiles::rename(ports::Handle file, const wchar_t* to) {
  const std::optional<std::wstring> from = ledger_.named(file);
  if (from && to != nullptr) watch_tree(from->c_str(), to);
  const bool done = inner_.rename(file, to);
  if (done && from && to != nullptr) ledger_.add_move(from->c_str(), to);
  return done;
}

bool RecordingFiles::move(const wchar_t* from, const wchar_t* to, std::uint32_t flags) {
  const bool delayed = (flags & ports::move_flag::delay_until_reboot) != 0;
  if (!delayed && from != nullptr && to != nullptr) watch_tree(from, to);
  const bool done = inner_.move(from, to, flags);
  if (done && !delayed && from != nullptr && to != nullptr) ledger_.add_move(from, to);
  if (done && delayed) ledger_.book(from, to == nullptr ? L"delete" : L"move to " + plain_path(to));
  return done;
}

std::uint32_t RecordingFiles::temp_file(const wchar_t* folder, const wchar_t* prefix, std::uint32_t unique,
                                        std::span<wchar_t, 260> into) {
  const std::uint32_t number = inner_.temp_file(folder, prefix, unique, into);
  if (number != 0 && unique == 0) {
    const std::wstring path = into.data();
    ledger_.touch_known(Ledger::Subject::path, plain_path(path), std::nullopt,
                        [this, path] { return look_at_path(system_, path); });
  }
  return number;
}

}  // namespace record
