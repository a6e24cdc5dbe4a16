#pragma once

#include <stddef.h>
#include <stdint.h>

// What the host needs of the system, declared by hand: no vendor's headers are at hand for this compiler.

#define KY_SYSTEM extern "C" __declspec(dllimport)

KY_SYSTEM void* GetProcessHeap();
KY_SYSTEM void* HeapAlloc(void* heap, uint32_t flags, size_t size);
KY_SYSTEM int32_t HeapFree(void* heap, uint32_t flags, void* memory);
KY_SYSTEM wchar_t* GetCommandLineW();
KY_SYSTEM void* GetStdHandle(uint32_t which);
KY_SYSTEM int32_t WriteFile(void* file, const void* bytes, uint32_t size, uint32_t* written, void* overlapped);
/// WIN32_FIND_DATAW, as far as it is looked at.
struct FoundFile {
  uint8_t facts[44];
  wchar_t name[274];
};
KY_SYSTEM void* FindFirstFileW(const wchar_t* pattern, FoundFile* found);
KY_SYSTEM int32_t FindClose(void* search);
KY_SYSTEM int32_t SetCurrentDirectoryW(const wchar_t* path);
KY_SYSTEM int32_t DeleteFileW(const wchar_t* path);
KY_SYSTEM void* LoadLibraryW(const wchar_t* path);
KY_SYSTEM void* GetProcAddress(void* module, const char* name);
KY_SYSTEM int32_t FreeLibrary(void* module);
KY_SYSTEM uint32_t GetLastError();
extern "C" [[noreturn]] __declspec(dllimport) void ExitProcess(uint32_t code);
KY_SYSTEM int32_t MultiByteToWideChar(uint32_t code_page, uint32_t flags, const char* source, int32_t source_length,
                                      wchar_t* destination, int32_t destination_length);
KY_SYSTEM wchar_t* SysAllocString(const wchar_t* text);
KY_SYSTEM int32_t CryptAcquireContextW(uintptr_t* provider, const wchar_t* container, const wchar_t* name,
                                       uint32_t type, uint32_t flags);
KY_SYSTEM int32_t CryptImportKey(uintptr_t provider, const uint8_t* blob, uint32_t size, uintptr_t by, uint32_t flags,
                                 uintptr_t* key);
KY_SYSTEM int32_t CryptEncrypt(uintptr_t key, uintptr_t hash, int32_t final, uint32_t flags, uint8_t* bytes,
                               uint32_t* size, uint32_t capacity);

inline wchar_t* first_argument() {
  wchar_t* at = GetCommandLineW();
  const wchar_t stop = *at == L'"' ? *at++ : L' ';
  while (*at != L'\0' && *at != stop) ++at;
  while (*at == L'"' || *at == L' ') ++at;
  wchar_t* end = at;
  while (*end != L'\0' && *end != L'"') ++end;
  *end = L'\0';
  return at;
}

inline void say(const char* text) {
  uint32_t size = 0, written = 0;
  while (text[size] != '\0') ++size;
  constexpr uint32_t standard_error = static_cast<uint32_t>(-12);
  WriteFile(GetStdHandle(standard_error), text, size, &written, nullptr);
}
