#pragma once

#include <functional>
#include <memory>

namespace ports {

/// What is kept for the process's logic as long as it is bound to one system.
class Attachment {
 public:
  virtual ~Attachment() = default;
};

namespace details {
[[nodiscard]] Attachment& attached(const void* kind, const std::function<std::unique_ptr<Attachment>()>& make);
template <class T>
inline constexpr char kind_of = 0;
}  // namespace details

/// The one `T` of the bound system, made by its default constructor at the first use and destroyed when another system
/// is bound or this one unbound. `T` derives from `Attachment`; what it holds it must guard itself. Any thread. Nobody
/// may hold on to it beyond the binding.
template <class T>
[[nodiscard]] T& attached() {
  return static_cast<T&>(details::attached(&details::kind_of<T>, [] { return std::make_unique<T>(); }));
}

}  // namespace ports
