#pragma once

#include <cstddef>
#include <cstdint>

#include "ky/self_free.h"

namespace ky {

/// Nine system calls behind a virtual table of fixed order; the last one is the Decrypter's converter. Each takes the
/// arguments of the system function of its name. It has no base: slot 0 is the destructor's.
class CWinapiInterface {
 public:
  virtual void* Destroy(std::uint32_t flags) = 0;
  virtual void InitializeCriticalSection(void* section) = 0;
  virtual void DeleteCriticalSection(void* section) = 0;
  virtual void EnterCriticalSection(void* section) = 0;
  virtual void LeaveCriticalSection(void* section) = 0;
  virtual void* CreateEventW(void* security, std::int32_t manual_reset, std::int32_t initial_state,
                             const wchar_t* name) = 0;
  virtual std::int32_t SetEvent(void* event) = 0;
  virtual std::int32_t CloseHandle(void* handle) = 0;
  virtual std::uint32_t GetTickCount() = 0;
  virtual std::int32_t MultiByteToWideChar(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                           std::int32_t source_length, wchar_t* destination,
                                           std::int32_t destination_length) = 0;

 protected:
  CWinapiInterface() = default;
  ~CWinapiInterface() = default;
};

/// The host's object under `SelfFree_Decrypter`. The library reaches into its fields, so their order is fixed. The
/// buffers are one set for the process: a deciphered value lives until the next one, and all loading is done by one
/// thread at a time.
class Decrypter : public CSelfFree {
 public:
  /// Capacity of each buffer, in its own units, terminators included.
  static constexpr std::size_t capacity = 512;

  /// The system's key handle, HCRYPTKEY.
  std::uintptr_t key = 0;
  /// Not touched by the library.
  std::uint16_t reserved = 0;
  /// The result that is handed out.
  wchar_t text[capacity] = {};
  /// The value without its first character, in standard base64.
  wchar_t staging[capacity] = {};
  /// The cipher bytes, then the plain UTF-8 bytes.
  std::uint8_t binary[capacity] = {};
  CWinapiInterface* converter = nullptr;

 protected:
  Decrypter() = default;
  ~Decrypter() = default;
};

}  // namespace ky
