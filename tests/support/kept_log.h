#pragma once

#include <functional>
#include <string>
#include <vector>

#include "installer/utils/base/strings/format.h"
#include "ky/logger_api.h"

namespace support {

/// A log that keeps its records, and may call back behind each.
class KeptLog final : public ky::Destroyable<KeptLog, ky::ILoggerApi> {
 public:
  explicit KeptLog(std::vector<std::wstring>& lines) : lines_(lines) {}
  void WriteFormatted(const wchar_t* format, std::va_list arguments) override {
    WriteLine(base::strings::format_v(format, arguments).c_str());
  }
  void WriteLine(const wchar_t* text) override {
    lines_.emplace_back(text);
    if (on_line) on_line();
  }
  void StartThreadLog(const wchar_t*, bool) override {}
  void SetXorKey(const char*) override {}
  void SetMergedNameTag(const wchar_t*) override {}

  std::function<void()> on_line;

 private:
  std::vector<std::wstring>& lines_;
};

}  // namespace support
