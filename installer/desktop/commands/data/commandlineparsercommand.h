#pragma once

#include <string>
#include <string_view>

#include "ky/install_command.h"

namespace ky {

/// Turns the switches of the command line into variables. The installer may be started by another one: a switch counts
/// when it stands on this process's line or on its parent's, and a pixel URL on the parent's line wins. A switch is
/// found anywhere in a line, so that "/forced" is "/force". With `knownParams` both lines are first cut down to what is
/// known, so that nothing else of them, such as a caller's secrets, gets into the store. The log has them whole.
///
/// Begin and end lines are built on a `LogStream`, and the end line has no full stop. What String_ParrentCommandLine
/// held is deliberately not released: others may still read it.
///
/// Attributes: knownParams (separated by single spaces; with a value where it ends in "=" or ":"; absent or empty: no
///   line is cut)
/// Keys read: String_CommandLine, which must be there
/// Keys written: String_CommandLine where it is cut, String_ParrentCommandLine, String_PixelUrlParam where a line has
///   one; int_Force, int_Silent, int_KeepSettings, int_SkipKyagent, int_RunKyagent, int_OnlyProgress, int_RunUninstall,
///   int_RunUpdate, int_RunRepair, int_IsUpgrade, int_AttachWindow
/// Results: 0; 1359 when another thread is inside. A load gives the base's result.
class CCommandLineParserCommand final : public Destroyable<CCommandLineParserCommand, CInstallCommand> {
 public:
  std::uint32_t Execute(std::uintptr_t first, std::uintptr_t second) override;
  std::uint32_t LoadCiphered(AttributeMap** map) override;

 private:
  void Sanitize(std::wstring& parent) const;
  [[nodiscard]] std::wstring CurrentLine() const;
  void StorePixelUrl(std::wstring_view line) const;
  void StoreSwitches(std::wstring_view current, std::wstring_view parent) const;

  std::wstring knownParams;
};

}  // namespace ky
