#include "host/store.h"

#include <utility>

#include "ky/keys.h"
#include "platform/ports/modules.h"
#include "platform/ports/threads.h"
#include "platform/ports/types.h"

namespace host {

namespace {

constexpr std::string_view self_free_prefix = "SelfFree_";
constexpr std::string_view handle_prefix = "HANDLE_";
constexpr std::string_view module_prefix = "HMODULE_";

bool holds_object(std::string_view key) {
  return key.starts_with(ky::string_prefix) || key.starts_with(self_free_prefix);
}

/// The turns of a release, in their order.
enum class Turn { objects_and_handles, log, modules, decrypter, never };

Turn turn_of(std::string_view key) {
  if (key == ky::keys::SelfFree_LoggerApi.name) return Turn::log;
  if (key == ky::keys::SelfFree_Decrypter.name) return Turn::decrypter;
  if (key.starts_with(module_prefix)) return Turn::modules;
  if (holds_object(key) || key.starts_with(handle_prefix)) return Turn::objects_and_handles;
  return Turn::never;
}

void release(std::string_view key, std::uint64_t value, ports::Waits& waits, ports::Modules& modules) {
  if (holds_object(key)) {
    ky::Release(ky::FromStored<ky::CSelfFree*>(value));
  } else if (key.starts_with(handle_prefix)) {
    (void)waits.close(static_cast<ports::Handle>(static_cast<std::uintptr_t>(value)));
  } else {
    const auto module = static_cast<ports::Module>(static_cast<std::uintptr_t>(value));
    if (module != modules.main()) (void)modules.free(module);
  }
}

}  // namespace

const Store::Entry* Store::find(std::string_view key) const {
  const auto found = positions_.find(key);
  return found == positions_.end() ? nullptr : &entries_[found->second];
}

std::uint64_t Store::get(std::string_view key) const {
  const ports::Lock lock(mutex_);
  const Entry* const entry = find(key);
  return entry == nullptr ? 0 : entry->value;
}

void Store::put(std::string_view key, std::uint64_t value) {
  const ports::Lock lock(mutex_);
  auto found = positions_.find(key);
  if (found == positions_.end()) {
    entries_.push_back({std::string(key), 0, 0});
    found = positions_.emplace(std::string(key), entries_.size() - 1).first;
  }
  Entry& entry = entries_[found->second];
  entry.value = value;
  ++entry.times_put;
}

std::uint64_t Store::times_put(std::string_view key) const {
  const ports::Lock lock(mutex_);
  const Entry* const entry = find(key);
  return entry == nullptr ? 0 : entry->times_put;
}

std::vector<StoredKey> Store::keys() const {
  const ports::Lock lock(mutex_);
  std::vector<StoredKey> all;
  all.reserve(entries_.size());
  for (const Entry& entry : entries_) all.push_back({entry.name, entry.value});
  return all;
}

std::uint64_t Store::take(std::string_view key) {
  const ports::Lock lock(mutex_);
  const auto found = positions_.find(key);
  return found == positions_.end() ? 0 : std::exchange(entries_[found->second].value, 0);
}

void Store::release_all(ports::Waits& waits, ports::Modules& modules) {
  for (const Turn turn : {Turn::objects_and_handles, Turn::log, Turn::modules, Turn::decrypter}) {
    // An object on its way out may put a key, so each turn goes over the keys until nothing is left in it. One that
    // puts itself again each time is given up after a few rounds.
    bool released = true;
    for (int round = 0; released && round < 4; ++round) {
      released = false;
      const std::vector<StoredKey> all = keys();
      for (auto key = all.rbegin(); key != all.rend(); ++key) {
        if (turn_of(key->name) != turn) continue;
        const std::uint64_t value = take(key->name);
        if (value == 0) continue;
        release(key->name, value, waits, modules);
        released = true;
      }
    }
  }
}

}  // namespace host
