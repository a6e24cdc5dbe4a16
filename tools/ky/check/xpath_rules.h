#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/ports/xml.h"
#include "platform/ports/xml_owner.h"
#include "tools/ky/check/key_traffic.h"
#include "tools/ky/check/rules.h"

namespace check {

/// Tells whether an XPath is one by using it.
class XPathTrial {
 public:
  explicit XPathTrial(ports::Xml& xml) : xml_(xml) {}

  /// True as well where there is no engine to ask.
  [[nodiscard]] bool parses(const std::string& xpath);

 private:
  ports::Xml& xml_;
  std::optional<ports::NodeOwner> document_;
};

/// Whether a command's XPaths parse, and what their brackets are taken for. `traffic` is the command's and knows its
/// puts. Adds to `findings`.
void check_xpaths(const KnownCommand& command, const KeyTraffic& traffic, XPathTrial& trial,
                  std::vector<Finding>& findings);

}  // namespace check
