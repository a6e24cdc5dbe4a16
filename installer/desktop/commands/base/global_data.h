#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ky/keys.h"

/// The commands' way to the host's store, typed by key: a read with the wrong type does not compile.
namespace ky {

/// Binds the host's two functions; nothing of the library runs before that. They stay for the life of the module, but
/// in a rehearsal or test another store may be bound when nothing of the library is alive.
void BindStore(GetFunction get, PutFunction put);

[[nodiscard]] std::uint64_t GetStored(const char* key);
void PutStored(const char* key, std::uint64_t value);

template <class T>
[[nodiscard]] T Get(Key<T> key) {
  return FromStored<T>(GetStored(key.name));
}
template <class T>
[[nodiscard]] T Get(const NamedKey<T>& key) {
  return FromStored<T>(GetStored(key.name.c_str()));
}
template <class T>
void Put(Key<T> key, T value) {
  PutStored(key.name, ToStored(value));
}
template <class T>
void Put(const NamedKey<T>& key, T value) {
  PutStored(key.name.c_str(), ToStored(value));
}

/// A script's name for a key, each unit cut to one byte.
[[nodiscard]] std::string NarrowedByUnit(std::wstring_view name);

}  // namespace ky
