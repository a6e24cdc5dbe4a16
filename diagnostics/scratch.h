#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace diagnostics {

/// Room for the parts of one record while it is made. Usual records need no allocation.
template <class T>
class Scratch {
 public:
  /// Room for `size` elements of any value, in place of what was there.
  [[nodiscard]] std::span<T> take(std::size_t size) {
    if (size <= near_.size()) return std::span<T>(near_).first(size);
    far_.reset(new T[size]);
    return {far_.get(), size};
  }

 private:
  std::array<T, 2048> near_;
  std::unique_ptr<T[]> far_;
};

}  // namespace diagnostics
