#pragma once

#include "ky/decrypter.h"

namespace win32 {

/// The system's own functions behind the table that crosses the boundary. Owned by whoever holds it, so that
/// `Destroy` gives nothing back.
class WinapiForwards final : public ky::CWinapiInterface {
 public:
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
};

}  // namespace win32
