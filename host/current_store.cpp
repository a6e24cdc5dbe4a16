#include "host/current_store.h"

#include <atomic>

#include "host/store.h"

namespace host {

namespace {
// One for the process, as the two exported functions are; constant-initialised, since a library may ask while it loads.
constinit std::atomic<Store*> current{nullptr};
}  // namespace

CurrentStore::CurrentStore(Store& store) {
  current.store(&store);
}

CurrentStore::~CurrentStore() {
  current.store(nullptr);
}

std::uint64_t get_current(const char* key) {
  const Store* const store = current.load();
  return store == nullptr || key == nullptr ? 0 : store->get(key);
}

void put_current(const char* key, std::uint64_t value) {
  Store* const store = current.load();
  if (store != nullptr && key != nullptr) store->put(key, value);
}

}  // namespace host
