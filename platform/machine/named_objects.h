#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/machine/handles.h"
#include "platform/ports/mutex.h"

namespace machine {

/// The names of events and their like, one space for the whole machine: "Global\x" and "x" are two, "Local\x" and "x"
/// one; case counts. An object leaves with its last owner. Safe for any thread.
class NamedObjects {
 public:
  struct Entry {
    std::shared_ptr<Object> object;  // null for a bad name: a backslash beyond the prefix
    bool existed = false;
  };
  /// The object of that name, or else what `make` gives, which has the name from then on.
  [[nodiscard]] Entry find_or_add(std::wstring_view name, const std::function<std::shared_ptr<Object>()>& make);

 private:
  ports::Mutex mutex_;
  std::map<std::wstring, std::weak_ptr<Object>, std::less<>> objects_ KY_GUARDED_BY(mutex_);
};

}  // namespace machine
