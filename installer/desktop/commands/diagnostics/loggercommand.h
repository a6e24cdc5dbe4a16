#pragma once

#include <cstdint>
#include <string>

#include "ky/install_command.h"

namespace ky {

/// Brings the run's log up: makes it, chooses its form, starts the running thread's file and publishes it, and the
/// error text after it. Where encryption cannot be set up the log is scrambled instead, without a word.
///
/// Deliberately outside the standard shape: it is meant to run once, so the guard stays entered and there is no end
/// line. A second run in the same thread makes a second log, and the first is nobody's any more.
///
/// Attributes: isMainThread (threads that start no log of their own write to this one's file), label (heads the files'
///   names; a dot is added), crypt (algorithm of the system's provider), length (size of its key in bits)
/// Keys read: none
/// Keys written: SelfFree_LoggerApi, SelfFree_ErrorApi
/// Results: 0; 1359 when another thread is inside. A load gives a failed read's HRESULT.
class CLoggerCommand final : public Destroyable<CLoggerCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  bool isMainThread = false;
  std::wstring label;
  std::wstring crypt;
  std::int32_t length = 0;
};

}  // namespace ky
