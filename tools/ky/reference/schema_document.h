#pragma once

#include <string>

namespace reference {

/// Numbered attributes are written out up to this number: XML Schema 1.0 cannot say "any number".
inline constexpr int greatest_family_number = 32;

/// The XML Schema document of plain scripts: what an editor completes, explains and underlines. It takes every script
/// that `ky script check` finds well-formed but for families beyond `greatest_family_number`, and leaves to the check
/// what it cannot say: ways, limits in bytes, attributes of which one must be there, the flow of values.
[[nodiscard]] std::string schema_document();

}  // namespace reference
