#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "ky/logger_api.h"
#include "platform/ports/clock.h"
#include "platform/ports/mutex.h"

namespace rehearsal {

/// The run's log in clear text, for a desk: each record stamped "[hh:mm:ss:mmm] " and handed on as UTF-8. Any thread;
/// the records of all threads go to the one sink, in the order of their writing.
class PlainLog final : public ky::Destroyable<PlainLog, ky::ILoggerApi> {
 public:
  /// Takes one record with its line end. Called by one thread at a time.
  using Sink = std::function<void(std::string_view utf8)>;

  PlainLog(ports::Clock& clock, Sink sink) : clock_(clock), sink_(std::move(sink)) {}

  void WriteFormatted(const wchar_t* format, std::va_list arguments) override;
  void WriteLine(const wchar_t* text) override;
  void StartThreadLog(const wchar_t* description, bool is_main_thread) override;
  void SetXorKey(const char* key) override;
  void SetMergedNameTag(const wchar_t* tag) override;

 private:
  ports::Clock& clock_;
  ports::Mutex mutex_;
  Sink sink_ KY_GUARDED_BY(mutex_);
};

}  // namespace rehearsal
