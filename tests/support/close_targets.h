#pragma once

#include <string>
#include <string_view>

#include "installer/utils/base/strings/utf8.h"
#include "tests/support/script_text.h"

namespace support {

/// The attributes of a CloseProcesses, target by target.
class CloseTargets {
 public:
  explicit CloseTargets(const std::string& limit) { with("maxTimeout", limit); }
  CloseTargets& add(const std::string& process, const std::string& cmd, const std::string& folder) {
    const std::string number = std::to_string(++count_);
    return with("process" + number, process).with("cmd" + number, cmd).with("currentDir" + number, folder);
  }
  CloseTargets& add(std::wstring_view process, std::wstring_view cmd, std::wstring_view folder) {
    using base::strings::to_utf8;
    return add(to_utf8(process), to_utf8(cmd), to_utf8(folder));
  }
  CloseTargets& with(const std::string& name, const std::string& value) {
    all_.emplace_back(name, value);
    return *this;
  }
  [[nodiscard]] const Attributes& all() const { return all_; }

 private:
  Attributes all_;
  int count_ = 0;
};

}  // namespace support
