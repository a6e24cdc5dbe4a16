#pragma once

#include <windows.h>

#include <wincrypt.h>

#include "platform/ports/mutex.h"
#include "platform/ports/system.h"

namespace win32 {

/// One CryptoAPI provider with AES and RSA and without a key container, acquired at the first use and given back with
/// the object. Any thread.
class CryptoProvider {
 public:
  explicit CryptoProvider(ports::Errors& errors) : errors_(errors) {}
  ~CryptoProvider();
  CryptoProvider(const CryptoProvider&) = delete;
  CryptoProvider& operator=(const CryptoProvider&) = delete;

  /// 0 on failure, whose code is told.
  [[nodiscard]] HCRYPTPROV get();

  /// Tells the system's last error when `done` is false, and gives `done`.
  bool told(BOOL done);

 private:
  ports::Errors& errors_;
  ports::Mutex mutex_;
  HCRYPTPROV provider_ KY_GUARDED_BY(mutex_) = 0;
};

/// Owns a CryptoAPI key.
class CryptoKey {
 public:
  CryptoKey() = default;
  ~CryptoKey() {
    if (key_ != 0) CryptDestroyKey(key_);
  }
  CryptoKey(const CryptoKey&) = delete;
  CryptoKey& operator=(const CryptoKey&) = delete;

  [[nodiscard]] HCRYPTKEY get() const { return key_; }
  [[nodiscard]] HCRYPTKEY* receive() { return &key_; }
  [[nodiscard]] HCRYPTKEY detach() {
    const HCRYPTKEY key = key_;
    key_ = 0;
    return key;
  }

 private:
  HCRYPTKEY key_ = 0;
};

}  // namespace win32
