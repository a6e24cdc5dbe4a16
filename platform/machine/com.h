#pragma once

#include <map>
#include <thread>

#include "platform/ports/com.h"
#include "platform/ports/mutex.h"

namespace machine {

/// COM of the machine's threads.
class Com final : public ports::Com {
 public:
  [[nodiscard]] ports::Result initialize(ports::ComModel model) override;
  void uninitialize() override;
  [[nodiscard]] ports::Result initialize_security(std::uint32_t authentication_level,
                                                  std::uint32_t impersonation_level) override;

  /// True on a thread that may use COM.
  [[nodiscard]] bool initialized() const;

 private:
  struct Entrance {
    ports::ComModel model = ports::ComModel::multithreaded;
    std::uint32_t depth = 0;
  };

  mutable ports::Mutex mutex_;
  std::map<std::thread::id, Entrance> threads_ KY_GUARDED_BY(mutex_);
  bool secured_ KY_GUARDED_BY(mutex_) = false;
};

}  // namespace machine
