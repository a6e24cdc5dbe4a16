#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "ky/error_api.h"
#include "platform/ports/mutex.h"

namespace ky {

/// Keeps the lines in one block, which grows by whole pages.
class CErrorApi final : public Destroyable<CErrorApi, IErrorApi> {
 public:
  CErrorApi() = default;
  ~CErrorApi() = default;

  void AddError(std::uint32_t code, const wchar_t* source, const wchar_t* format, std::va_list arguments) override;
  std::uint32_t GetErrors(wchar_t* buffer, std::uint64_t* size) override;

 private:
  struct Free {
    void operator()(wchar_t* block) const { std::free(block); }
  };

  /// Room for so many characters more. False, with the text as it was, where there is no memory.
  [[nodiscard]] bool MakeRoom(std::uint64_t more) KY_REQUIRES(lock);

  ports::Mutex lock;
  std::unique_ptr<wchar_t, Free> text KY_GUARDED_BY(lock);
  wchar_t* end KY_GUARDED_BY(lock) = nullptr;
  std::uint64_t length KY_GUARDED_BY(lock) = 0;
  std::uint64_t capacity KY_GUARDED_BY(lock) = 0;
};

}  // namespace ky
