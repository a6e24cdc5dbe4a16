#pragma once

#include <cstdint>
#include <span>

#include "platform/ports/types.h"

namespace ports {

/// The packages of drivers that the system keeps. Any thread; failure leaves its code in the last error.
class DriverStore {
 public:
  virtual ~DriverStore() = default;

  /// SetupGetInfDriverStoreLocationW without alternate platform or locale: the full path in the store of the INF file
  /// that stands under `inf` in the system's INF folder, terminated; `required` is its length with the terminator.
  /// Fails with not_found (no package of the store), file_not_found, insufficient_buffer.
  [[nodiscard]] virtual bool inf_location(const wchar_t* inf, std::span<wchar_t> into, std::uint32_t& required) = 0;
};

}  // namespace ports
