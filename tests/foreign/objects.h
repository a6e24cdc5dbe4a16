#pragma once

#include "tests/foreign/classes.h"
#include "tests/foreign/system.h"

// The host's own objects.

inline bool same(const wchar_t* a, const wchar_t* b) {
  for (; *a != L'\0' && *a == *b; ++a) ++b;
  return *a == *b;
}

class TextAttribute final : public Attribute {
 public:
  TextAttribute(const wchar_t* text, int32_t& alive) : text_(text), alive_(alive) { ++alive_; }
  uint32_t AddRef() override { return ++references_; }
  uint32_t Release() override {
    const uint32_t left = --references_;
    if (left == 0) {
      --alive_;
      HeapFree(GetProcessHeap(), 0, this);
    }
    return left;
  }
  int32_t get_text(wchar_t** out) override {
    *out = SysAllocString(text_);
    return 0;
  }

 private:
  const wchar_t* text_;
  int32_t& alive_;
  uint32_t references_ = 1;
};

/// Name and value of an attribute; a table of them ends with a null name.
struct Pair {
  const wchar_t* name;
  const wchar_t* value;
};

/// A map that lives where it was made and counts what is held of it.
class TableMap final : public NodeMap {
 public:
  explicit TableMap(const Pair* pairs) : pairs_(pairs) {}
  uint32_t AddRef() override { return ++references; }
  uint32_t Release() override { return --references; }
  int32_t getNamedItem(wchar_t* name, Attribute** out) override {
    *out = nullptr;
    for (const Pair* pair = pairs_; pair->name != nullptr; ++pair) {
      if (same(pair->name, name)) {
        *out = new TextAttribute(pair->value, attributes_alive);
        return 0;
      }
    }
    return 1;
  }

  uint32_t references = 1;
  int32_t attributes_alive = 0;

 private:
  const Pair* pairs_;
};

/// Counts what it is asked.
class Converter final : public CWinapiInterface {
 public:
  void InitializeCriticalSection(void*) override { ++others; }
  void DeleteCriticalSection(void*) override { ++others; }
  void EnterCriticalSection(void*) override { ++others; }
  void LeaveCriticalSection(void*) override { ++others; }
  void* CreateEventW(void*, int32_t, int32_t, const wchar_t*) override {
    ++others;
    return nullptr;
  }
  int32_t SetEvent(void*) override { return ++others; }
  int32_t CloseHandle(void*) override { return ++others; }
  uint32_t GetTickCount() override { return static_cast<uint32_t>(++others); }
  int32_t MultiByteToWideChar(uint32_t code_page, uint32_t flags, const char* source, int32_t source_length,
                              wchar_t* destination, int32_t destination_length) override {
    ++conversions;
    return ::MultiByteToWideChar(code_page, flags, source, source_length, destination, destination_length);
  }

  int32_t conversions = 0;
  int32_t others = 0;
};

class CountingLogger final : public ILoggerApi {
 public:
  void WriteFormatted(const wchar_t*, __builtin_va_list) override { ++records; }
  void WriteLine(const wchar_t*) override { ++records; }
  void StartThreadLog(const wchar_t*, bool) override {}
  void SetXorKey(const char*) override {}
  void SetMergedNameTag(const wchar_t*) override {}

  int32_t records = 0;
};
