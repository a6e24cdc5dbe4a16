#include "installer/desktop/commands/flow/jumpcommand.h"

#include <cwchar>
#include <string>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/utils/base/stop.h"
#include "installer/utils/base/strings/case_fold.h"
#include "installer/utils/base/strings/number.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"Jump";
constexpr std::uint32_t not_loaded = 1;

}  // namespace

std::uint32_t CJumpCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  if (const std::uint32_t failure = LoadCondition(attributes, decrypter); failure != 0) return failure;
  if (const std::uint32_t failure = LoadComparison(attributes, decrypter); failure != 0) return failure;
  if (const auto reading = attributes.Read(L"strValue"); reading.usable()) {
    strValue = DuplicateString<wchar_t>(DecipherOrStop(decrypter, reading.text.c_str()));
    hasStrValue = true;
  }
  // The base has read this attribute into `next`, which a run overwrites.
  if (const auto reading = attributes.Read(L"next"); reading.usable()) {
    elseNext = DecipheredInteger(decrypter, reading);
  }
  return ports::code::success;
}

std::uint32_t CJumpCommand::LoadCondition(const Attributes& attributes, Decrypter& decrypter) {
  const AttributeReading name = attributes.Read(L"condition");
  if (!name.usable()) return static_cast<std::uint32_t>(name.present() ? name.read : name.found);
  condition = NarrowedWithinLength(DecipherOrStop(decrypter, name.text.c_str()));
  if (!condition) return not_loaded;

  const AttributeReading where = attributes.Read(L"target");
  if (!where.usable()) return static_cast<std::uint32_t>(where.present() ? where.read : where.found);
  target = DecipheredInteger(decrypter, where);

  const AttributeReading sensitive = attributes.Read(L"compareCase");
  if (!sensitive.present()) return ports::code::success;
  if (sensitive.read != 0) return static_cast<std::uint32_t>(sensitive.read);
  compareCase = DecipheredInteger(decrypter, sensitive) != 0;
  return ports::code::success;
}

std::uint32_t CJumpCommand::LoadComparison(const Attributes& attributes, Decrypter& decrypter) {
  const AttributeReading compared = attributes.Read(L"value");
  hasValue = compared.usable();
  const wchar_t* const ciphered = hasValue ? compared.text.c_str() : nullptr;
  const AttributeReading by_name = attributes.Read(L"expValue");
  if (by_name.usable() && DecipheredInteger(decrypter, by_name) != 0) {
    expValue = NarrowedWithinLength(DecipherOrStop(decrypter, ciphered));
    return expValue ? ports::code::success : not_loaded;
  }
  value = base::strings::to_integer(DecipherOrStop(decrypter, ciphered));
  return ports::code::success;
}

std::uint32_t CJumpCommand::Execute(std::uintptr_t, std::uintptr_t) {
  return InStandardShape(*this, guard, log_name, [this] {
    const wchar_t* text = nullptr;
    std::int32_t integer = 0;
    if (hasStrValue) {
      text = FetchText();
    } else {
      integer = Get(IntKey(condition.get()));
    }
    next = elseNext >= 0 ? elseNext : FollowingIndex();
    if (expValue) value = Get(IntKey(expValue.get()));
    // An integer to compare with wins over a text: 0 is then what it is compared with.
    if (hasValue || !hasStrValue) {
      BranchOnInteger(integer);
    } else {
      BranchOnText(text);
    }
    return ports::code::success;
  });
}

/// The variable's text, or null. The expansion replaces the text to compare with: a second run starts from it.
const wchar_t* CJumpCommand::FetchText() {
  const CString* const found = Get(StringKey(condition.get()));
  wchar_t* expanded = nullptr;
  static_cast<void>(ExpandToNew(strValue.get(), &expanded));  // null tells
  strValue.reset(expanded);
  return found == nullptr ? nullptr : found->value;
}

void CJumpCommand::BranchOnInteger(std::int32_t integer) {
  const bool outcome = hasValue ? integer == value : integer != 0;
  if (outcome) next = target;
  if (hasValue) {
    Trace(outcome ? L"%i: %s: %i('%S') == %i. True => %i.\n" : L"%i: %s: %i('%S') == %i. False => %i.\n", index,
          log_name, integer, condition.get(), value, next);
  } else {
    Trace(outcome ? L"%i: %s: %i('%S') != 0. True => %i.\n" : L"%i: %s: %i('%S') != 0. False => %i.\n", index, log_name,
          integer, condition.get(), next);
  }
}

void CJumpCommand::BranchOnText(const wchar_t* text) {
  const bool outcome = text != nullptr && EqualsStrValue(text);
  if (outcome) next = target;
  Trace(outcome ? L"%i: %s: ('%s') == ('%s'). True => %i.\n" : L"%i: %s: ('%s') == ('%s'). False => %i.\n", index,
        log_name, text, strValue.get(), next);
}

bool CJumpCommand::EqualsStrValue(const wchar_t* text) const {
  if (!strValue) base::stop_null_value(L"Jump: strValue names an undefined variable", std::to_wstring(index));
  if (compareCase) return std::wcscmp(text, strValue.get()) == 0;
  return base::strings::equal_ignoring_case(text, strValue.get());
}

}  // namespace ky
