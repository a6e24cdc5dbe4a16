#pragma once

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string_view>

namespace ky {

/// Root of every object that crosses the boundary between host and library.
///
/// The two Windows C++ ABIs give a virtual destructor a different number of slots, so the destructor's slot is spelled
/// out as `Destroy` and the C++ destructor stays non-virtual and protected. An object is allocated and freed by the
/// module that made it; a holder releases it only through `Release` or `SelfFree`.
class CSelfFree {
 public:
  /// Bit of `Destroy`'s flags: give the memory back as well.
  static constexpr std::uint32_t free_memory = 1;

  CSelfFree(const CSelfFree&) = delete;
  CSelfFree& operator=(const CSelfFree&) = delete;

  /// Destroys the object and frees its memory. Slot 0.
  virtual void SelfFree() { Destroy(free_memory); }

  /// Ends the object's life; with bit 0 of `flags` its memory goes too. Gives the address the object had. Slot 1.
  virtual void* Destroy(std::uint32_t flags) = 0;

 protected:
  CSelfFree() = default;
  ~CSelfFree() = default;
};

/// Releases `object`; a null pointer is left alone.
inline void Release(CSelfFree* object) {
  if (object != nullptr) object->SelfFree();
}

/// Deleter for a scope-bound owner: `std::unique_ptr<CNopCommand, ky::Releaser>`.
struct Releaser {
  void operator()(CSelfFree* object) const { Release(object); }
};

/// Gives `Final`, a class derived from `Base`, its `Destroy`. `Final` must be marked final.
template <class Final, class Base>
class Destroyable : public Base {
 public:
  void* Destroy(std::uint32_t flags) override {
    auto* self = static_cast<Final*>(this);
    void* const address = this;
    if ((flags & CSelfFree::free_memory) != 0) {
      delete self;
    } else {
      self->~Final();
    }
    return address;
  }

 protected:
  Destroyable() = default;
  ~Destroyable() = default;
};

/// The form of every `String_` value in the store: one wide string on the heap.
/// Readers go straight to `value` and neither keep nor free it. Text is UTF-16 code units, one to a wchar_t.
class CString final : public Destroyable<CString, CSelfFree> {
 public:
  explicit CString(std::wstring_view text) : value(new wchar_t[text.size() + 1]) {
    text.copy(value, text.size());
    value[text.size()] = L'\0';
  }
  ~CString() { delete[] value; }

  wchar_t* value;
};

}  // namespace ky
