#pragma once

#include <utility>

#include "platform/ports/xml.h"

namespace host {

/// Holds one reference of a node or an attribute map.
template <class Held>
class XmlOwner {
 public:
  explicit XmlOwner(ports::Xml& xml, Held* held = nullptr) : xml_(xml), held_(held) {}
  ~XmlOwner() { reset(); }
  XmlOwner(const XmlOwner&) = delete;
  XmlOwner& operator=(const XmlOwner&) = delete;

  [[nodiscard]] Held* get() const { return held_; }
  [[nodiscard]] bool empty() const { return held_ == nullptr; }

  void reset(Held* held = nullptr) {
    if (held_ != nullptr) xml_.release(held_);
    held_ = held;
  }
  /// Where an operation of the port puts a reference; what was held is given back first.
  [[nodiscard]] Held*& receive() {
    reset();
    return held_;
  }
  /// Hands the reference over.
  [[nodiscard]] Held* give_up() { return std::exchange(held_, nullptr); }

 private:
  ports::Xml& xml_;
  Held* held_;
};

using NodeOwner = XmlOwner<ports::XmlNode>;
using MapOwner = XmlOwner<ky::AttributeMap>;

}  // namespace host
