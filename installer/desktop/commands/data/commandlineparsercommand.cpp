#include "installer/desktop/commands/data/commandlineparsercommand.h"

#include <system_error>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/desktop/commands/data/commandlineswitches.h"
#include "installer/utils/base/process/command_line.h"
#include "installer/utils/base/stop.h"
#include "platform/ports/inspection.h"
#include "platform/ports/system.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"CommandLineParser";

/// Empty where the parent has ended, unless its id is somebody else's by now, or where its line cannot be read.
std::wstring ParentLine() {
  const auto own = base::process::QueryProcessBasicInfo(ports::system().inspection.current());
  const auto parent = static_cast<std::uint32_t>(own.information.parent_id);
  std::error_code ignored;
  return parent == 0 ? std::wstring() : base::process::GetProcessCommandLine(parent, ignored);
}

}  // namespace

std::uint32_t CCommandLineParserCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  const std::uint32_t base_result = attributes.LoadBase(*this);
  static_cast<void>(attributes.ReadCipheredAttribute(decrypter, L"knownParams", knownParams));
  return base_result;
}

std::uint32_t CCommandLineParserCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!EnterGuard(*this, guard, log_name)) return ports::code::internal_error;
  const GuardLeaver leaver(guard);
  LogStream() << index << L": CommandLineParser Begin execute.";
  std::wstring parent = ParentLine();
  LogStream() << index << L": CommandLineParser initial parent cmd line=" << parent;
  if (!knownParams.empty()) Sanitize(parent);
  const std::wstring current = CurrentLine();
  LogStream() << index << L": CommandLineParser current cmd line=" << current;
  StorePixelUrl(current);
  Put(keys::String_ParrentCommandLine, new CString(parent));
  StorePixelUrl(parent);
  StoreSwitches(current, parent);
  executed = true;
  LogStream() << index << L": CommandLineParser End execute. Next command " << GetNextIndex();
  return ports::code::success;
}

void CCommandLineParserCommand::Sanitize(std::wstring& parent) const {
  LogStream() << index << L": known params='" << knownParams
              << L"'. current commandline and parent commandline should be sanitized.";
  const KnownParameters known = SplitKnownParameters(knownParams);
  if (CString* const whole = Get(keys::String_CommandLine); whole != nullptr) {
    LogStream() << index << L": CommandLineParser initial cmdline=" << whole->value;
    const std::wstring sanitized = SanitizeCommandLine(whole->value, known);
    LogStream() << index << L": CommandLineParser sanitized cmdline=" << sanitized;
    Put(keys::String_CommandLine, new CString(sanitized));
    whole->SelfFree();
  }
  if (parent.empty()) return;
  parent = SanitizeCommandLine(parent, known);
  LogStream() << index << L": CommandLineParser sanitized parent cmdline=" << parent;
}

std::wstring CCommandLineParserCommand::CurrentLine() const {
  const CString* const line = Get(keys::String_CommandLine);
  if (line == nullptr) base::stop_null_value(L"CommandLineParser: no command line", std::to_wstring(index));
  return line->value;
}

void CCommandLineParserCommand::StorePixelUrl(std::wstring_view line) const {
  const auto value = PixelUrlOf(line);
  if (!value) {
    LogStream() << index << L": pixel_url params is missing.";
    return;
  }
  LogStream() << index << L": pixel_url params is present. value=" << *value;
  Release(Get(keys::String_PixelUrlParam));
  Put(keys::String_PixelUrlParam, new CString(*value));
}

void CCommandLineParserCommand::StoreSwitches(std::wstring_view current, std::wstring_view parent) const {
  const auto given = [&](std::wstring_view text) -> std::int32_t {
    return current.find(text) != current.npos || parent.find(text) != parent.npos ? 1 : 0;
  };
  const std::int32_t skips_agent = given(L"/skipKyagent");
  const struct {
    Key<std::int32_t> key;
    const wchar_t* word;
    std::int32_t value;
  } rows[] = {
      {keys::int_Force, L"force", given(L"/force")},
      {keys::int_Silent, L"silent", given(L"/silent")},
      {keys::int_KeepSettings, L"keepSettings", given(L"/keepSettings")},
      {keys::int_SkipKyagent, L"skipKyagent", skips_agent},
      {keys::int_RunKyagent, L"RunKyagent", 1 - skips_agent},
      {keys::int_OnlyProgress, L"onlyprogress", 0},
      {keys::int_RunUninstall, L"uninstall", given(L"/uninstall")},
      {keys::int_RunUpdate, L"update", given(L"/update")},
      {keys::int_RunRepair, L"repair", given(L"/repair")},
      {keys::int_IsUpgrade, L"upgrade", given(L"/upgrade")},
      {keys::int_AttachWindow, L"attach", given(L"/attach")},
  };
  for (const auto& row : rows) {
    Put(row.key, row.value);
    Trace(L"%i: %s Setting '%s'=%i.\n", index, log_name, row.word, row.value);
  }
}

}  // namespace ky
