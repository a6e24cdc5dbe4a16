#pragma once

#include <utility>

#include "platform/ports/xml.h"

namespace ports {

/// Holds one reference of a node or an attribute map.
template <class Held>
class XmlOwner {
 public:
  explicit XmlOwner(Xml& xml, Held* held = nullptr) : xml_(&xml), held_(held) {}
  XmlOwner(XmlOwner&& other) noexcept : xml_(other.xml_), held_(other.give_up()) {}
  ~XmlOwner() { reset(); }
  XmlOwner& operator=(XmlOwner&& other) noexcept {
    std::swap(xml_, other.xml_);
    std::swap(held_, other.held_);
    return *this;
  }

  [[nodiscard]] Held* get() const { return held_; }
  [[nodiscard]] bool empty() const { return held_ == nullptr; }

  void reset(Held* held = nullptr) {
    if (held_ != nullptr) xml_->release(held_);
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
  Xml* xml_;
  Held* held_;
};

using NodeOwner = XmlOwner<XmlNode>;
using MapOwner = XmlOwner<ky::AttributeMap>;

}  // namespace ports
