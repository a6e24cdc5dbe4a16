#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/modules.h"
#include "platform/ports/mutex.h"

namespace ports {
class Errors;
}

namespace machine {

/// The resources of the command library: a table from type and number to bytes. Not part of a machine file.
class Resources final : public ports::Resources {
 public:
  explicit Resources(ports::Errors& errors) : errors_(errors) {}

  [[nodiscard]] ports::ResourcePlace find(ports::Module module, std::uint16_t id, const wchar_t* type) override;
  [[nodiscard]] ports::ResourceData load(ports::Module module, ports::ResourcePlace place) override;
  [[nodiscard]] std::uint32_t size(ports::Module module, ports::ResourcePlace place) override;
  [[nodiscard]] const std::uint8_t* lock(ports::ResourceData data) override;

  /// What stood there before goes on being valid for who has it.
  void add(std::wstring_view type, std::uint16_t id, std::vector<std::uint8_t> bytes);

 private:
  struct Entry {
    std::wstring type;
    std::uint16_t id = 0;
    std::vector<std::uint8_t> bytes;
  };

  ports::Errors& errors_;
  ports::Mutex mutex_;
  std::deque<Entry> entries_ KY_GUARDED_BY(mutex_);  // entries stay where they are
};

}  // namespace machine
