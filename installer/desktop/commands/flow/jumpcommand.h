#pragma once

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/install_command.h"

namespace ky {

class Attributes;
class Decrypter;

/// The script's branch: compares a variable with a value and writes the outcome into `next`.
///
/// Attributes: condition (name, required), target (index, required), value (integer; a name with expValue),
///   expValue (flag), strValue (text, expanded at each run), compareCase (flag, default 1), next (index to go to when
///   the test is false, else the following one)
/// Keys read: int_ or String_ of condition, int_ of value with expValue
/// Keys written: none
/// Results: always 0; 1359 when another thread is inside. A load gives 1 where condition or target is missing.
class CJumpCommand final : public Destroyable<CJumpCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  std::uint32_t LoadCondition(const Attributes& attributes, Decrypter& decrypter);
  std::uint32_t LoadComparison(const Attributes& attributes, Decrypter& decrypter);
  const wchar_t* FetchText();
  void BranchOnInteger(std::int32_t integer);
  void BranchOnText(const wchar_t* text);
  [[nodiscard]] bool EqualsStrValue(const wchar_t* text) const;

  NarrowHeapString condition;
  HeapString strValue;
  std::int32_t value = 0;
  std::int32_t target = 0;
  bool hasValue = false;
  bool hasStrValue = false;
  bool compareCase = true;
  std::int32_t elseNext = -1;
  NarrowHeapString expValue;
};

}  // namespace ky
