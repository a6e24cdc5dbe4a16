#include "installer/desktop/commands/data/evaluatecommand.h"

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/desktop/commands/data/expressionparser.h"
#include "installer/utils/base/expressions/arithmetic.h"
#include "platform/ports/codes.h"

namespace ky {

namespace {
constexpr wchar_t log_name[] = L"Evaluate";
}  // namespace

std::uint32_t CEvaluateCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  const std::uint32_t base_result = attributes.LoadBase(*this);
  const bool both = attributes.ReadCipheredAttribute(decrypter, L"expression", expression) == ports::code::success &&
                    attributes.ReadCipheredAttribute(decrypter, L"resultVar", resultVar) == ports::code::success;
  return both ? ports::code::success : base_result;
}

std::uint32_t CEvaluateCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!EnterGuard(*this, guard, log_name)) return ports::code::internal_error;
  const StandardEnd end(*this, guard, log_name);
  Trace(L"%i: %s Begin execute.\n", index, log_name);
  CExpressionParser parser(NarrowedByUnit(expression).c_str());
  const std::int32_t value = base::expressions::to_integer(parser.Evaluate());
  Trace(L"Expression: '%s' = %d\n", expression.c_str(), value);
  Put(IntKey(NarrowedByUnit(resultVar)), value);
  return ports::code::success;
}

}  // namespace ky
