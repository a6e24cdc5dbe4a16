#pragma once

#include <cstdint>
#include <memory>

#include "ky/command_guard.h"
#include "ky/self_free.h"

namespace ky {

/// The attribute map of a script element. On Windows this is MSXML's `IXMLDOMNamedNodeMap`; elsewhere it is the map of
/// the build's own XML engine, with the same operations and result codes.
struct AttributeMap;

/// Base of all commands: a place in the script, the condition on running, the guard, and the reading of attributes.
/// Fields and virtual operations stand in an order that hosts of either Windows C++ ABI rely on.
///
/// Attributes: index, next, errVar, execCondition
/// Keys read: SelfFree_Decrypter, the key named by execCondition
/// Keys written: none
/// Results: 0, or 1359 when another thread is inside `Execute`
class CInstallCommand : public CSelfFree {
 public:
  /// Slot 2. The command's position in the script, -1 before it is set.
  virtual std::int32_t GetIndex();

  /// Slot 3. The index to go on at: `next` if it is not negative, else `index` + 1. Before `Execute` or a refused
  /// condition it warns in the log, and answers all the same.
  virtual std::int32_t GetNextIndex();

  /// Slot 4. Runs the command and gives a Windows error code, 0 for success. All but two commands ignore both words;
  /// those two keep the second.
  virtual std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second);

  /// Slot 5.
  virtual void SetIndex(std::int32_t position);

  /// Slot 6. Reads the ciphered attributes. `*map` carries one reference, which the callee takes over and releases: the
  /// way in which a counted smart pointer is passed by value. Gives 0, a failed read's HRESULT, or a Windows error
  /// code. A null map leaves as `winapi::com_error` with E_POINTER.
  virtual std::uint32_t LoadCiphered(AttributeMap** map);

  /// Slot 7. Reads `index` and `next` alone, from plain decimal text. The reference goes as in `LoadCiphered`.
  virtual std::uint32_t LoadPlain(AttributeMap** map);

  /// Slot 8. True when the command is to run. A refused command counts as executed, so that its `GetNextIndex` does not
  /// warn.
  virtual bool CheckExecCondition();

  [[nodiscard]] bool GuardHeld() const noexcept { return guard.Held(); }

  /// The index behind this command's own; it wraps around behind the greatest.
  [[nodiscard]] std::int32_t FollowingIndex() const noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) + 1);
  }

  std::int32_t index = -1;
  std::int32_t next = -1;
  bool executed = false;
  /// Name from the attribute, without prefix; for the host, no command reads it. Null when the attribute is absent.
  std::unique_ptr<char[]> errVar;
  /// The whole key, "int_" and the name.
  std::unique_ptr<char[]> execCondition;

 protected:
  CInstallCommand();
  ~CInstallCommand();

  CommandGuard guard;
};

}  // namespace ky
