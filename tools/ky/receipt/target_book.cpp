#include "tools/ky/receipt/target_book.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "installer/utils/base/strings/case_fold.h"
#include "platform/record/paths.h"

namespace receipt {

namespace {

using base::strings::lower_cased;
using Identity = std::tuple<host::TargetKind, std::wstring, std::wstring, bool>;

/// Names of processes are looked for in their case, all else in any; paths have more than one spelling.
Identity identity(const Target& target) {
  const bool exact = target.kind == host::TargetKind::process_name;
  const bool path = target.kind == host::TargetKind::file || target.kind == host::TargetKind::folder;
  const std::wstring name = path ? record::plain_path(target.path) : target.path;
  return {target.kind, exact ? name : lower_cased(name), lower_cased(target.value), target.view_64};
}

template <class Item>
void add_new(std::vector<Item>& to, const std::vector<Item>& from) {
  for (const Item& item : from) {
    if (std::find(to.begin(), to.end(), item) == to.end()) to.push_back(item);
  }
}

}  // namespace

bool same_thing(const Target& left, const Target& right) {
  return identity(left) == identity(right);
}

TargetBook::TargetBook(const script::PlainScript& script, const std::vector<std::int32_t>& indexes) {
  for (std::size_t at = 0; at < script.elements.size() && at < indexes.size(); ++at) {
    const script::PlainElement& element = script.elements[at];
    const host::CommandSchema* const schema = host::schema_of(element.name);
    if (schema == nullptr || schema->targets.empty()) continue;
    Entry entry;
    entry.schema = schema;
    entry.element = element;
    entry.command.index = indexes[at];
    entry.command.name = element.name;
    entries_.push_back(std::move(entry));
  }
}

TargetBook::Entry* TargetBook::find(std::int32_t index) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [index](const Entry& entry) { return entry.command.index == index; });
  return found == entries_.end() ? nullptr : &*found;
}

void TargetBook::before(std::int32_t index, const Variables& variables) {
  Entry* const entry = find(index);
  if (entry == nullptr) return;
  entry->coming = names_of(*entry->schema, entry->element, variables, entry->kept);
}

void TargetBook::settle(Entry& entry, bool run, std::uint32_t result) {
  entry.command.reached = true;
  entry.open = !run && !entry.command.run && !entry.coming.unnamed.empty();
  add_new(entry.seen.targets, entry.coming.targets);
  if (run) {
    entry.command.run = true;
    entry.command.result = result;
    add_new(entry.seen.unnamed, entry.coming.unnamed);
    entry.kept.insert(entry.coming.expansions.begin(), entry.coming.expansions.end());
  }
  entry.coming = {};
}

void TargetBook::after(std::int32_t index, bool run, std::uint32_t result) {
  if (Entry* const entry = find(index)) settle(*entry, run, result);
}

Named TargetBook::names(const Variables& at_end) const {
  Named named;
  std::map<Identity, std::size_t> positions;
  for (Entry entry : entries_) {
    if (!entry.coming.targets.empty() || !entry.coming.unnamed.empty()) settle(entry, true, 0);
    if (entry.open) {
      const Names late = names_of(*entry.schema, entry.element, at_end, entry.kept);
      add_new(entry.seen.targets, late.targets);
      add_new(entry.seen.unnamed, late.unnamed);
    }
    for (const Target& target : entry.seen.targets) {
      const auto [position, added] = positions.try_emplace(identity(target), named.things.size());
      if (added) named.things.push_back({target, {}});
      named.things[position->second].by.push_back(entry.command);
    }
    for (const Unnamed& what : entry.seen.unnamed) {
      named.not_named.push_back({entry.command.index, entry.command.name, what});
    }
  }
  return named;
}

}  // namespace receipt
