#pragma once

#include <string>

#include "ky/install_command.h"

namespace ky {

/// Computes an expression and stores its value, cut to a 32-bit integer; one that does not parse stores 0.
///
/// The standard shape, with an end that also comes where an exception leaves the command.
///
/// Attributes: expression (not expanded), resultVar (name of the key without prefix; read only where there is an
///   expression)
/// Keys read: int_ of each variable in expression
/// Keys written: int_ of resultVar, "int_" itself where it is absent; int_ of the variable that expression assigns
/// Results: 0; 1359 when another thread is inside. A load with both attributes gives 0 whatever the base's load gave.
class CEvaluateCommand final : public Destroyable<CEvaluateCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  std::wstring expression;
  std::wstring resultVar;
};

}  // namespace ky
