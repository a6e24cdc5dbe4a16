#pragma once

#include <string>

#include "tools/ky/receipt/receipt.h"

namespace receipt {

/// A receipt as it is published, see docs/receipt.md: UTF-8, members sorted, LF line ends.
[[nodiscard]] std::string to_json(const Receipt& receipt);

}  // namespace receipt
