#pragma once

#include <stdint.h>

// The boundary's classes as a vendor's own headers would declare them: with a virtual destructor, and with a counted
// smart pointer that is passed by value. On purpose nothing here comes from include/ky.

struct Attribute;

inline constexpr int32_t not_implemented = static_cast<int32_t>(0x80004001);

/// IXMLDOMNamedNodeMap, as far as the library calls it.
struct NodeMap {
  virtual int32_t QueryInterface(const void*, void**) { return not_implemented; }
  virtual uint32_t AddRef() = 0;
  virtual uint32_t Release() = 0;
  virtual int32_t GetTypeInfoCount(uint32_t*) { return not_implemented; }
  virtual int32_t GetTypeInfo(uint32_t, uint32_t, void**) { return not_implemented; }
  virtual int32_t GetIDsOfNames(const void*, wchar_t**, uint32_t, uint32_t, int32_t*) { return not_implemented; }
  virtual int32_t Invoke(int32_t, const void*, uint32_t, uint16_t, void*, void*, void*, uint32_t*) {
    return not_implemented;
  }
  virtual int32_t getNamedItem(wchar_t* name, Attribute** out) = 0;
};

/// IXMLDOMNode, up to the text.
struct Attribute {
  virtual int32_t QueryInterface(const void*, void**) { return not_implemented; }
  virtual uint32_t AddRef() = 0;
  virtual uint32_t Release() = 0;
  virtual int32_t Unused3() { return not_implemented; }
  virtual int32_t Unused4() { return not_implemented; }
  virtual int32_t Unused5() { return not_implemented; }
  virtual int32_t Unused6() { return not_implemented; }
  virtual int32_t get_nodeName(wchar_t**) { return not_implemented; }
  virtual int32_t Unused8() { return not_implemented; }
  virtual int32_t Unused9() { return not_implemented; }
  virtual int32_t Unused10() { return not_implemented; }
  virtual int32_t Unused11() { return not_implemented; }
  virtual int32_t Unused12() { return not_implemented; }
  virtual int32_t Unused13() { return not_implemented; }
  virtual int32_t Unused14() { return not_implemented; }
  virtual int32_t Unused15() { return not_implemented; }
  virtual int32_t Unused16() { return not_implemented; }
  virtual int32_t Unused17() { return not_implemented; }
  virtual int32_t Unused18() { return not_implemented; }
  virtual int32_t Unused19() { return not_implemented; }
  virtual int32_t Unused20() { return not_implemented; }
  virtual int32_t Unused21() { return not_implemented; }
  virtual int32_t Unused22() { return not_implemented; }
  virtual int32_t Unused23() { return not_implemented; }
  virtual int32_t Unused24() { return not_implemented; }
  virtual int32_t Unused25() { return not_implemented; }
  virtual int32_t get_text(wchar_t** out) = 0;
};

/// A counted pointer: whoever receives it by value owns one reference.
class NodeMapPtr {
 public:
  explicit NodeMapPtr(NodeMap* map) : map_(map) { map_->AddRef(); }
  NodeMapPtr(const NodeMapPtr& other) : map_(other.map_) { map_->AddRef(); }
  NodeMapPtr& operator=(const NodeMapPtr&) = delete;
  ~NodeMapPtr() {
    if (map_ != nullptr) map_->Release();
  }

 private:
  NodeMap* map_;
};

class CSelfFree {
 public:
  virtual void SelfFree() { delete this; }
  virtual ~CSelfFree() {}
};

class CInstallCommand : public CSelfFree {
 public:
  virtual int32_t GetIndex() = 0;
  virtual int32_t GetNextIndex() = 0;
  virtual uint32_t Execute(uintptr_t first, uintptr_t second) = 0;
  virtual void SetIndex(int32_t position) = 0;
  virtual uint32_t LoadCiphered(NodeMapPtr map) = 0;
  virtual uint32_t LoadPlain(NodeMapPtr map) = 0;
  virtual bool CheckExecCondition() = 0;

  int32_t index;
  int32_t next;
  bool executed;
  char* errVar;
  char* execCondition;
};

class CWinapiInterface {
 public:
  virtual ~CWinapiInterface() {}
  virtual void InitializeCriticalSection(void* section) = 0;
  virtual void DeleteCriticalSection(void* section) = 0;
  virtual void EnterCriticalSection(void* section) = 0;
  virtual void LeaveCriticalSection(void* section) = 0;
  virtual void* CreateEventW(void* security, int32_t manual, int32_t initial, const wchar_t* name) = 0;
  virtual int32_t SetEvent(void* event) = 0;
  virtual int32_t CloseHandle(void* handle) = 0;
  virtual uint32_t GetTickCount() = 0;
  virtual int32_t MultiByteToWideChar(uint32_t code_page, uint32_t flags, const char* source, int32_t source_length,
                                      wchar_t* destination, int32_t destination_length) = 0;
};

class Decrypter : public CSelfFree {
 public:
  uintptr_t key = 0;
  uint16_t reserved = 0;
  wchar_t text[512];
  wchar_t staging[512];
  uint8_t binary[512];
  CWinapiInterface* converter = nullptr;
};

class ILoggerApi : public CSelfFree {
 public:
  virtual void WriteFormatted(const wchar_t* format, __builtin_va_list arguments) = 0;
  virtual void WriteLine(const wchar_t* text) = 0;
  virtual void StartThreadLog(const wchar_t* description, bool is_main_thread) = 0;
  virtual void SetXorKey(const char* key) = 0;
  virtual void SetMergedNameTag(const wchar_t* tag) = 0;
};

class IErrorApi : public CSelfFree {
 public:
  virtual void AddError(uint32_t code, const wchar_t* source, const wchar_t* format, __builtin_va_list arguments) = 0;
  virtual uint32_t GetErrors(wchar_t* buffer, uint64_t* size) = 0;
};
