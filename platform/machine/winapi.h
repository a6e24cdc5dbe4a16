#pragma once

#include "ky/decrypter.h"

namespace ports {
class Clock;
class CodePages;
class Waits;
}  // namespace ports

namespace machine {

/// The converter's table of system calls, on the machine. A critical section is a lock that lives in the 40 bytes that
/// the system's own would take.
class Winapi final : public ky::CWinapiInterface {
 public:
  Winapi(ports::Waits& waits, ports::Clock& clock, ports::CodePages& text)
      : waits_(waits), clock_(clock), text_(text) {}

  /// Does nothing: the machine owns it.
  void* Destroy(std::uint32_t flags) override;
  void InitializeCriticalSection(void* section) override;
  void DeleteCriticalSection(void* section) override;
  void EnterCriticalSection(void* section) override;
  void LeaveCriticalSection(void* section) override;
  void* CreateEventW(void* security, std::int32_t manual_reset, std::int32_t initial_state,
                     const wchar_t* name) override;
  std::int32_t SetEvent(void* event) override;
  std::int32_t CloseHandle(void* handle) override;
  std::uint32_t GetTickCount() override;
  std::int32_t MultiByteToWideChar(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                   std::int32_t source_length, wchar_t* destination,
                                   std::int32_t destination_length) override;

 private:
  ports::Waits& waits_;
  ports::Clock& clock_;
  ports::CodePages& text_;
};

}  // namespace machine
