#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ky/install_command.h"

namespace ky {

/// Deletes log files of earlier runs: those in the common application data folder that end in ".bin", begin with the
/// label and have a number below the limit. The number is what begins at the first digit of the name, which in a log's
/// name is its time, in seconds since 1970, as long as the label has no digits.
///
/// Outside the standard shape in one thing: the guard is left before the next index is asked for.
///
/// Attributes: maxTimeVar (variable that holds the limit), label (a dot is added)
/// Keys read: int_ of maxTimeVar
/// Keys written: none
/// Results: 0, whatever could not be deleted; 1359 when another thread is inside. A load always gives 0.
class CClearOldLogsCommand final : public Destroyable<CClearOldLogsCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void Clear();
  void Collect(const std::wstring& folder);
  [[nodiscard]] bool IsOld(const std::wstring& name) const;

  std::wstring maxTimeVar;
  std::wstring label;
  std::int64_t limit = 0;
  // Full paths; deliberately kept from one run of the command to the next.
  std::vector<std::wstring> old_logs;
};

}  // namespace ky
