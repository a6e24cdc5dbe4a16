#pragma once

#include <cstdint>
#include <string>

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/install_command.h"

namespace ky {

/// Starts rundll32.exe, found by the system's search, with a command line of the script's, and waits for its end if
/// told to. Its exit code is not read.
///
/// Deliberately outside the standard shape: the begin line and the expansion come before the guard has a say, a run
/// that finds another thread inside still gives its end line and 0, and the guard is left before that line.
///
/// Attributes: filePath (a file that has to be there, and plays no other part; required), arguments (the whole command
///   line behind "rundll32.exe ", required), currentDir (a folder that has to be there, required), waitAmount (decimal
///   milliseconds or INFINITE in any case; absent: no wait). The first three are expanded and keep their expansion;
///   what does not expand stays as it is.
/// Keys read: the variables in filePath, arguments and currentDir
/// Keys written: none
/// Results: always 0, also where nothing was started or another thread is inside. A load gives 1 where one of the first
///   three is missing.
class CRunDll32Command final : public Destroyable<CRunDll32Command, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void ExpandFields();
  void CheckAndRun() const;
  void Run(const std::wstring& line) const;

  HeapString filePath, arguments, currentDir;
  std::uint32_t waitAmount = 0;
};

}  // namespace ky
