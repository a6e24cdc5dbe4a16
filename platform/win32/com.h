#pragma once

#include <windows.h>

#include <oleauto.h>

#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace win32 {

/// Owns one reference of a COM object.
template <class T>
class ComOwner {
 public:
  ComOwner() = default;
  ComOwner(ComOwner&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComOwner& operator=(ComOwner&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComOwner() {
    if (object_ != nullptr) object_->Release();
  }

  [[nodiscard]] T* get() const { return object_; }
  T* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  /// Where a call writes its result. Only while nothing is owned.
  [[nodiscard]] T** receive() { return &object_; }
  [[nodiscard]] void** receive_any() { return reinterpret_cast<void**>(&object_); }
  /// Hands the reference over.
  [[nodiscard]] T* detach() { return std::exchange(object_, nullptr); }

 private:
  T* object_ = nullptr;
};

/// Owns a BSTR.
class Bstr {
 public:
  Bstr() = default;
  /// Null for null.
  explicit Bstr(const wchar_t* text) : text_(SysAllocString(text)) {}
  explicit Bstr(std::wstring_view text) : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  ~Bstr() { SysFreeString(text_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  [[nodiscard]] BSTR get() const { return text_; }
  [[nodiscard]] BSTR* receive() { return &text_; }
  /// A null BSTR is an empty text.
  [[nodiscard]] std::wstring text() const {
    return text_ == nullptr ? std::wstring() : std::wstring(text_, SysStringLen(text_));
  }

 private:
  BSTR text_ = nullptr;
};

}  // namespace win32
