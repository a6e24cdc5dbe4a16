#pragma once

#include "ky/decrypter.h"

namespace host {

/// A converter that forwards to the system's and counts the texts that failed. Commands take a value whose conversion
/// failed for an empty one, so whoever loads them has to look here. One thread at a time, like all deciphering.
class NotingConverter final : public ky::CWinapiInterface {
 public:
  /// `inner` outlives this object.
  explicit NotingConverter(ky::CWinapiInterface& inner) : inner_(inner) {}

  [[nodiscard]] std::size_t failures() const { return failures_; }

  /// Does nothing: the object is part of another.
  void* Destroy(std::uint32_t) override { return this; }
  void InitializeCriticalSection(void* section) override { inner_.InitializeCriticalSection(section); }
  void DeleteCriticalSection(void* section) override { inner_.DeleteCriticalSection(section); }
  void EnterCriticalSection(void* section) override { inner_.EnterCriticalSection(section); }
  void LeaveCriticalSection(void* section) override { inner_.LeaveCriticalSection(section); }
  void* CreateEventW(void* security, std::int32_t manual_reset, std::int32_t initial_state,
                     const wchar_t* name) override {
    return inner_.CreateEventW(security, manual_reset, initial_state, name);
  }
  std::int32_t SetEvent(void* event) override { return inner_.SetEvent(event); }
  std::int32_t CloseHandle(void* handle) override { return inner_.CloseHandle(handle); }
  std::uint32_t GetTickCount() override { return inner_.GetTickCount(); }
  std::int32_t MultiByteToWideChar(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                   std::int32_t source_length, wchar_t* destination,
                                   std::int32_t destination_length) override {
    const std::int32_t written =
        inner_.MultiByteToWideChar(code_page, flags, source, source_length, destination, destination_length);
    if (written == 0) ++failures_;
    return written;
  }

 private:
  ky::CWinapiInterface& inner_;
  std::size_t failures_ = 0;
};

}  // namespace host
