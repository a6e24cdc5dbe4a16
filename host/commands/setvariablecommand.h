#pragma once

#include <optional>
#include <string>

#include "ky/install_command.h"

namespace host {

/// Puts a variable: an integer, a text, or one of each under the same name.
///
/// Attributes: var (name, required), value (integer), strValue (text, expanded at each run); one of the two at least
/// Keys read: those that strValue names
/// Keys written: int_ of var with value, String_ of var with strValue; a text that was there is released after it is
///   replaced
/// Results: 0; 31 where strValue names an undefined variable, and nothing is put then; 1359 when another thread is
///   inside. A load gives 87 where an attribute is missing.
class CSetVariableCommand final : public ky::Destroyable<CSetVariableCommand, ky::CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(ky::AttributeMap** map) override;

 private:
  [[nodiscard]] std::uint32_t Set() const;

  std::string var;
  std::optional<std::int32_t> value;
  std::optional<std::wstring> strValue;
};

}  // namespace host
