// The little that the compiler expects of a runtime; the host has none.
#include "tests/foreign/system.h"

extern "C" {
int _fltused = 0;

int _purecall() {
  ExitProcess(99);
}

void* memset(void* into, int value, size_t size) {
  auto* bytes = static_cast<volatile uint8_t*>(into);
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(value);
  return into;
}

void* memcpy(void* into, const void* from, size_t size) {
  auto* to = static_cast<volatile uint8_t*>(into);
  for (size_t i = 0; i < size; ++i) to[i] = static_cast<const uint8_t*>(from)[i];
  return into;
}
}

void* operator new(size_t size) {
  return HeapAlloc(GetProcessHeap(), 0, size);
}
void operator delete(void* memory) noexcept {
  HeapFree(GetProcessHeap(), 0, memory);
}
void operator delete(void* memory, size_t) noexcept {
  HeapFree(GetProcessHeap(), 0, memory);
}
