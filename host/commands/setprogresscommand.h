#pragma once

#include <optional>

#include "ky/install_command.h"

namespace host {

/// Moves the progress that the window shows and lets it look again.
///
/// Attributes: value (integer), max (integer); one of the two at least. What is absent stays as it is.
/// Keys read: HANDLE_Refresh, which is signalled and reset: whoever waits on it at that moment sees it
/// Keys written: int_CurrentProgressValue with value, int_MaxProgressValue with max
/// Results: 0, or the error of signalling; 1359 when another thread is inside. A load gives 87 where both attributes
/// are
///   missing.
class CSetProgressCommand final : public ky::Destroyable<CSetProgressCommand, ky::CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(ky::AttributeMap** map) override;

 private:
  [[nodiscard]] std::uint32_t Show() const;

  std::optional<std::int32_t> value;
  std::optional<std::int32_t> max;
};

}  // namespace host
