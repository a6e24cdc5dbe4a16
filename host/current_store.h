#pragma once

#include <cstdint>

namespace host {

class Store;

/// Makes `store` the one that the process's `Get` and `Put` reach, for the life of this object. There is one at a time.
class CurrentStore {
 public:
  explicit CurrentStore(Store& store);
  ~CurrentStore();
  CurrentStore(const CurrentStore&) = delete;
  CurrentStore& operator=(const CurrentStore&) = delete;
};

/// `Get` and `Put` on the current store. Without one, or with a null key, reading gives 0 and writing does nothing.
[[nodiscard]] std::uint64_t get_current(const char* key);
void put_current(const char* key, std::uint64_t value);

}  // namespace host
