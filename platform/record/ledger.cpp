#include "platform/record/ledger.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/ports/codes.h"
#include "platform/record/paths.h"

namespace record {

namespace {

bool was_absent(ports::ErrorCode code) {
  return code == ports::code::file_not_found || code == ports::code::path_not_found;
}

/// Calls `act` with each entry of a map by Id that is a key or value below the key.
template <class ById, class Act>
void for_each_below(ById& by_id, const std::wstring& key, Act act) {
  const std::wstring prefix = folded(key) + L"\\";
  for (const Ledger::Subject subject : {Ledger::Subject::key, Ledger::Subject::value}) {
    for (auto at = by_id.lower_bound({subject, prefix});
         at != by_id.end() && at->first.first == subject && at->first.second.starts_with(prefix); ++at) {
      act(*at);
    }
  }
}

}  // namespace

std::wstring value_path(const KeyPlace& place, const std::wstring& name) {
  return place.path() + L"\\" + (name.empty() ? L"(default)" : name);
}

void Ledger::touch(Subject subject, const std::wstring& path, Look look) {
  if (paused()) return;
  {
    const ports::Lock lock(mutex_);
    if (entries_.contains({subject, folded(path)})) return;
  }
  std::optional<State> before = look();
  touch_known(subject, path, std::move(before), std::move(look));
}

void Ledger::touch_known(Subject subject, const std::wstring& path, std::optional<State> before, Look look) {
  const KeptError kept(inner_.errors);
  if (paused()) return;
  const ports::Lock lock(mutex_);
  entries_.try_emplace({subject, folded(path)}, Entry{path, std::move(before), std::move(look)});
}

void Ledger::watch_path(const std::wstring& path) {
  touch(Subject::path, plain_path(path), [this, path] { return look_at_path(inner_, path); });
}

void Ledger::watch_content(const std::wstring& path) {
  watch_path(path);
  touch(Subject::content, plain_path(path), [this, path] { return look_at_content(inner_, path); });
}

void Ledger::watch_key(const KeyPlace& place) {
  touch(Subject::key, place.path(), [this, place] { return look_at_key(inner_, place); });
}

void Ledger::watch_value(const KeyPlace& place, const std::wstring& name) {
  touch(Subject::value, value_path(place, name), [this, place, name] { return look_at_value(inner_, place, name); });
}

void Ledger::note_hive(const KeyPlace& place, bool mounted) {
  const State there{"hive", L"mounted"};
  touch_known(Subject::hive, place.path(), mounted ? std::nullopt : std::optional(there),
              [this, place, there] { return look_at_key(inner_, place) ? std::optional(there) : std::nullopt; });
}

void Ledger::watch_task(const std::wstring& path) {
  touch(Subject::task, path, [this, path] { return look_at_task(inner_, path); });
}

void Ledger::watch_driver(const std::wstring& inf) {
  touch(Subject::driver, inf, [this, inf] { return look_at_driver(inner_, inf); });
}

void Ledger::settle(const std::wstring& key) {
  std::vector<std::pair<Id, Look>> looks;
  std::vector<std::pair<std::size_t, Look>> attempts;
  {
    const ports::Lock lock(mutex_);
    for_each_below(entries_, key, [&looks](const auto& entry) { looks.emplace_back(entry.first, entry.second.look); });
    std::vector<std::size_t> positions;
    for_each_below(attempt_of_, key, [&positions](const auto& entry) { positions.push_back(entry.second); });
    for (const std::size_t at : positions) attempts.emplace_back(at, attempts_[at].look);
  }
  std::vector<std::pair<Id, std::optional<State>>> states;
  for (const auto& [id, look] : looks) states.emplace_back(id, look());
  std::vector<std::pair<std::size_t, bool>> gone;
  for (const auto& [at, look] : attempts) gone.emplace_back(at, !look().has_value());
  const ports::Lock lock(mutex_);
  for (auto& [id, state] : states) entries_.at(id).settled = std::move(state);
  for (const auto& [at, is_gone] : gone) attempts_[at].settled = is_gone;
}

void Ledger::unsettle(const std::wstring& key) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  for_each_below(entries_, key, [](auto& entry) { entry.second.settled.reset(); });
  std::vector<std::size_t> positions;
  for_each_below(attempt_of_, key, [&positions](const auto& entry) { positions.push_back(entry.second); });
  for (const std::size_t at : positions) attempts_[at].settled.reset();
}

void Ledger::add_action(std::string kind, std::wstring text) {
  const KeptError kept(inner_.errors);
  if (paused()) return;
  const ports::Lock lock(mutex_);
  actions_.push_back({std::move(kind), std::move(text)});
}

void Ledger::add_deletion(Subject subject, const std::string& kind, const std::wstring& path, ports::ErrorCode code,
                          Look look) {
  const KeptError kept(inner_.errors);
  if (paused()) return;
  const ports::Lock lock(mutex_);
  const auto [found, added] = attempt_of_.try_emplace({subject, folded(path)}, attempts_.size());
  if (added) {
    attempts_.push_back({{kind, path, code, false}, std::move(look)});
    return;
  }
  // What an earlier attempt deleted is rightly missing at the next.
  Deletion& known = attempts_[found->second].deletion;
  if (known.code != ports::code::success || !was_absent(code)) known.code = code;
}

void Ledger::add_path_deletion(const std::string& kind, const std::wstring& path, ports::ErrorCode code) {
  add_deletion(Subject::path, kind, plain_path(path), code, [this, path] { return look_at_path(inner_, path); });
}

void Ledger::add_move(const std::wstring& from, const std::wstring& to) {
  const KeptError kept(inner_.errors);
  if (paused()) return;
  const ports::Lock lock(mutex_);
  moves_.push_back({plain_path(from), plain_path(to)});
}

void Ledger::book(const std::wstring& path, std::wstring text) {
  const KeptError kept(inner_.errors);
  if (paused()) return;
  const ports::Lock lock(mutex_);
  // There is no telling what was booked before, and a booking stays: the look has nothing to ask.
  entries_.insert_or_assign({Subject::booking, folded(plain_path(path))},
                            Entry{plain_path(path), std::nullopt, [text = std::move(text)] {
                                    return std::optional<State>(State{"delayed-move", text});
                                  }});
}

void Ledger::add_log(const std::wstring& path, bool written) {
  const KeptError kept(inner_.errors);
  if (paused()) return;
  const std::wstring plain = plain_path(path);
  const ports::Lock lock(mutex_);
  const auto found = logs_.try_emplace(folded(plain), Log{plain, written}).first;
  found->second.written = found->second.written || written;
}

bool Ledger::is_own_log(const std::wstring& path) const {
  const ports::Lock lock(mutex_);
  const auto found = logs_.find(folded(plain_path(path)));
  return found != logs_.end() && found->second.written;
}

void Ledger::name(ports::Handle handle, std::wstring text) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  names_.insert_or_assign(handle, std::move(text));
}

std::optional<std::wstring> Ledger::named(ports::Handle handle) const {
  const ports::Lock lock(mutex_);
  const auto found = names_.find(handle);
  if (found == names_.end()) return std::nullopt;
  return found->second;
}

void Ledger::forget(ports::Handle handle) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  names_.erase(handle);
}

void Ledger::place(ports::RegistryKey key, KeyPlace place) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  places_.insert_or_assign(key, std::move(place));
}

std::optional<KeyPlace> Ledger::placed(ports::RegistryKey key) const {
  using ports::RegistryKey;
  if (key == RegistryKey::classes_root || key == RegistryKey::current_user || key == RegistryKey::local_machine ||
      key == RegistryKey::users) {
    return KeyPlace{key, L"", 0};
  }
  const ports::Lock lock(mutex_);
  const auto found = places_.find(key);
  if (found == places_.end()) return std::nullopt;
  return found->second;
}

void Ledger::forget(ports::RegistryKey key) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  places_.erase(key);
}

void Ledger::pause() {
  const ports::Lock lock(mutex_);
  ++pauses_[std::this_thread::get_id()];
}

void Ledger::resume() {
  const ports::Lock lock(mutex_);
  const auto found = pauses_.find(std::this_thread::get_id());
  if (--found->second == 0) pauses_.erase(found);
}

bool Ledger::paused() const {
  const ports::Lock lock(mutex_);
  return pauses_.contains(std::this_thread::get_id());
}

std::vector<Change> Ledger::changes() const {
  const KeptError kept(inner_.errors);
  std::map<Id, Entry> entries;
  {
    const ports::Lock lock(mutex_);
    entries = entries_;
    for (const auto& [path, log] : logs_) {
      entries.erase({Subject::path, path});
      entries.erase({Subject::content, path});
    }
  }
  std::vector<Change> found;
  std::set<std::wstring> changed_paths;
  // Paths come before contents in the map: a content counts only where the path's own description says nothing.
  for (const auto& [id, entry] : entries) {
    const bool content = id.first == Subject::content;
    if (content && (!entry.before || changed_paths.contains(id.second))) continue;
    const std::optional<State> after = entry.state();
    if (content && !after) continue;
    const std::size_t known = found.size();
    add_difference(found, entry.path, entry.before, after);
    if (id.first == Subject::path && found.size() != known) changed_paths.insert(id.second);
  }
  std::sort(found.begin(), found.end(), [](const Change& left, const Change& right) {
    return std::tie(left.kind, left.path) < std::tie(right.kind, right.path);
  });
  return found;
}

std::vector<Action> Ledger::actions() const {
  const ports::Lock lock(mutex_);
  return actions_;
}

std::vector<Move> Ledger::moves() const {
  const ports::Lock lock(mutex_);
  return moves_;
}

std::vector<Deletion> Ledger::deletions() const {
  const KeptError kept(inner_.errors);
  std::vector<Attempt> attempts;
  {
    const ports::Lock lock(mutex_);
    attempts = attempts_;
  }
  std::vector<Deletion> found;
  for (Attempt& attempt : attempts) {
    attempt.deletion.gone = attempt.settled ? *attempt.settled : !attempt.look().has_value();
    found.push_back(std::move(attempt.deletion));
  }
  return found;
}

std::vector<LogFile> Ledger::logs() const {
  const KeptError kept(inner_.errors);
  std::map<std::wstring, Log> logs;
  {
    const ports::Lock lock(mutex_);
    logs = logs_;
  }
  std::vector<LogFile> found;
  for (const auto& [path, log] : logs) {
    const bool there = look_at_path(inner_, log.path).has_value();
    // What the run wrote and removed again, its threads' files, has come and gone.
    if (log.written && !there) continue;
    found.push_back({log.path, log.written ? LogFate::written : there ? LogFate::remains : LogFate::pruned});
  }
  return found;
}

void add_difference(std::vector<Change>& changes, const std::wstring& path, const std::optional<State>& before,
                    const std::optional<State>& after) {
  if (before == after) return;
  if (before && after && before->kind == after->kind) {
    changes.push_back({before->kind, path, before->text, after->text});
    return;
  }
  if (before) changes.push_back({before->kind, path, before->text, std::nullopt});
  if (after) changes.push_back({after->kind, path, std::nullopt, after->text});
}

}  // namespace record
