#include "platform/record/process_book.h"

#include <utility>

#include "platform/ports/processes.h"
#include "platform/ports/threads.h"
#include "platform/record/ledger.h"

namespace record {

namespace {

constexpr std::uint32_t to_deal_with = ports::process_access::terminate | ports::process_access::synchronize;

}  // namespace

void ProcessBook::listed(const ports::ProcessRow& row) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  names_.insert_or_assign(row.id, row.name);
}

std::optional<std::size_t> ProcessBook::entry_of(std::uint32_t id) {
  const auto name = names_.find(id);
  if (name == names_.end()) return std::nullopt;
  for (std::size_t at = entries_.size(); at-- > 0;) {
    const Entry& entry = entries_[at];
    if (entry.process.id == id && entry.process.name == name->second && !entry.settled) return at;
  }
  Entry fresh;
  fresh.process.id = id;
  fresh.process.name = name->second;
  entries_.push_back(std::move(fresh));
  return entries_.size() - 1;
}

void ProcessBook::opened(std::uint32_t access, std::uint32_t id, ports::Handle handle, ports::ErrorCode code) {
  const KeptError kept(inner_.errors);
  if (id == inner_.processes.current_id()) return;
  const ports::Lock lock(mutex_);
  const bool for_its_line = std::exchange(parent_, 0) == id;
  const bool deals = (access & to_deal_with) != 0;
  if (handle != ports::Handle::null) {
    const auto at = deals ? entry_of(id) : std::nullopt;
    holds_.insert_or_assign(handle, Hold{id, at});
    if (at) {
      entries_[*at].process.opened = true;
      entries_[*at].process.let_go = false;
      entries_[*at].held = handle;
      entries_[*at].waited = false;
    }
  } else if (const auto at = for_its_line ? std::nullopt : entry_of(id)) {
    SeenProcess& process = entries_[*at].process;
    process.path_asked |= !deals;
    (deals ? process.open_error : process.path_error) = code;
  }
}

void ProcessBook::path_read(ports::Handle handle, const std::wstring& path, ports::ErrorCode code) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  const auto hold = holds_.find(handle);
  if (hold == holds_.end()) return;
  const auto at = entry_of(hold->second.id);
  if (!at) return;
  SeenProcess& process = entries_[*at].process;
  process.path_asked = true;
  process.path_error = code;
  if (!path.empty()) process.path = path;
}

void ProcessBook::parent_told(std::uint32_t id) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  parent_ = id;
}

void ProcessBook::waiting(std::span<const ports::Handle> handles) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  for (const ports::Handle handle : handles) {
    const auto hold = holds_.find(handle);
    if (hold != holds_.end() && hold->second.entry) entries_[*hold->second.entry].waited = true;
  }
}

void ProcessBook::terminated(ports::Handle handle, ports::ErrorCode code) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  const auto hold = holds_.find(handle);
  if (hold == holds_.end() || !hold->second.entry) return;
  Entry& entry = entries_[*hold->second.entry];
  entry.process.terminated |= code == 0;
  entry.process.terminate_error = code;
}

std::optional<ProcessBook::Hold> ProcessBook::forget(ports::Handle handle) {
  const KeptError kept(inner_.errors);
  std::optional<Hold> hold;
  {
    const ports::Lock lock(mutex_);
    const auto found = holds_.find(handle);
    if (found == holds_.end()) return std::nullopt;
    hold = found->second;
    holds_.erase(found);
  }
  if (!hold->entry) return hold;
  const bool ended = has_ended(handle);
  const ports::Lock lock(mutex_);
  Entry& entry = entries_[*hold->entry];
  entry.held = ports::Handle::null;
  entry.process.runs = !ended;
  entry.process.let_go = !entry.waited && !entry.process.terminated && entry.process.terminate_error == 0;
  entry.settled = ended || entry.process.terminated;
  return hold;
}

void ProcessBook::restore(ports::Handle handle, const Hold& hold) {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  holds_.insert_or_assign(handle, hold);
  if (hold.entry) entries_[*hold.entry].held = handle;
}

std::wstring ProcessBook::called(ports::Handle handle) const {
  const KeptError kept(inner_.errors);
  const ports::Lock lock(mutex_);
  const auto hold = holds_.find(handle);
  if (hold == holds_.end() || !hold->second.entry) return {};
  const SeenProcess& process = entries_[*hold->second.entry].process;
  return process.path.empty() ? process.name : process.path;
}

bool ProcessBook::has_ended(ports::Handle handle) const {
  return inner_.waits.wait({&handle, 1}, false, 0) == ports::wait_result::object_0;
}

std::map<std::uint32_t, std::wstring> ProcessBook::running() const {
  std::map<std::uint32_t, std::wstring> names;
  const ports::Handle snapshot = inner_.inspection.snapshot();
  if (snapshot == ports::Handle::invalid) return names;
  ports::ProcessRow row;
  for (bool more = inner_.inspection.first(snapshot, row); more; more = inner_.inspection.next(snapshot, row)) {
    names.insert_or_assign(row.id, row.name);
  }
  inner_.waits.close(snapshot);
  return names;
}

std::vector<SeenProcess> ProcessBook::seen() const {
  const KeptError kept(inner_.errors);
  std::vector<Entry> entries;
  {
    const ports::Lock lock(mutex_);
    entries = entries_;
  }
  std::optional<std::map<std::uint32_t, std::wstring>> names;
  std::vector<SeenProcess> found;
  for (Entry& entry : entries) {
    SeenProcess& process = entry.process;
    if (entry.held != ports::Handle::null) {
      process.runs = !has_ended(entry.held);
    } else if (!process.opened && process.open_error != 0) {
      if (!names) names = running();
      const auto listed = names->find(process.id);
      process.runs = listed != names->end() && listed->second == process.name;
    }
    found.push_back(std::move(process));
  }
  return found;
}

}  // namespace record
