#include "installer/desktop/commands/process/rundll32command.h"

#include <optional>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/standard_shape.h"
#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/utils/base/process/launch.h"
#include "installer/utils/base/strings/case_fold.h"
#include "installer/utils/base/strings/number.h"
#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace ky {

namespace {

constexpr wchar_t log_name[] = L"RunDll32";

/// PathIsDirectoryW.
[[nodiscard]] bool IsDirectory(const wchar_t* path) {
  const std::uint32_t attributes = ports::system().files.attributes(path);
  return attributes != ports::file_attribute::invalid && (attributes & ports::file_attribute::directory) != 0;
}

}  // namespace

std::uint32_t CRunDll32Command::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  struct Required {
    const wchar_t* name;
    HeapString& field;
  };
  for (const auto& [name, field] :
       {Required{L"filePath", filePath}, Required{L"arguments", arguments}, Required{L"currentDir", currentDir}}) {
    const AttributeReading reading = attributes.Read(name);
    if (!reading.usable()) return static_cast<std::uint32_t>(reading.present() ? reading.read : reading.found);
    field = DuplicateString<wchar_t>(DecipherOrStop(decrypter, reading.text.c_str()));
  }
  if (const auto wait = attributes.Read(L"waitAmount"); wait.usable()) {
    const wchar_t* const amount = DecipherOrStop(decrypter, wait.text.c_str());
    waitAmount = base::strings::equal_ignoring_case(amount, L"INFINITE")
                     ? ports::infinite
                     : static_cast<std::uint32_t>(base::strings::to_decimal(amount));
  }
  return ports::code::success;
}

std::uint32_t CRunDll32Command::Execute(std::uintptr_t, std::uintptr_t) {
  Trace(L"%i: %s Begin execute.\n", index, log_name);
  {
    std::optional<GuardLeaver> leaver;
    if (guard.TryEnter()) leaver.emplace(guard);
    ExpandFields();
    Trace(L"[RunDll32] File path = '%s'\n", filePath.get());
    Trace(L"[RunDll32] Current directory = '%s'\n", currentDir.get());
    Trace(L"[RunDll32] Arguments = '%s'\n", arguments.get());
    if (leaver) {
      CheckAndRun();
      executed = true;
    }
  }
  Trace(L"%i: %s End execute. Next command %i.\n", index, log_name, GetNextIndex());
  return ports::code::success;
}

void CRunDll32Command::ExpandFields() {
  for (HeapString* const field : {&currentDir, &filePath, &arguments}) {
    wchar_t* expanded = nullptr;
    if (ExpandToNew(field->get(), &expanded) != 0) field->reset(expanded);
  }
}

void CRunDll32Command::CheckAndRun() const {
  if (currentDir && !IsDirectory(currentDir.get())) {
    Trace(L"[RunDll32] '%s' is not a valid directory\n", currentDir.get());
  } else if (!filePath) {
    Trace(L"[RunDll32] The file path is NULL\n");
  } else if (!ports::system().files.exists(filePath.get())) {
    Trace(L"[RunDll32] '%s' is not a valid file path\n", filePath.get());
  } else {
    Run(std::wstring(L"rundll32.exe ").append(arguments ? arguments.get() : L""));
  }
}

void CRunDll32Command::Run(const std::wstring& line) const {
  Trace(L"[RunDll32] Command = '%s'\n", line.c_str());
  const base::process::LaunchedProcess launched =
      base::process::RunCommandLine(line, currentDir ? currentDir.get() : L"");
  const winapi::scoped_handle process(launched.process);
  const winapi::scoped_handle thread(launched.thread);
  if (!process.valid()) {
    Trace(L"[RunDll32] RunCommand failed\n");
    return;
  }
  const ports::Handle handle = process.get();
  (void)ports::system().waits.wait({&handle, 1}, false, waitAmount);
  Trace(L"[RunDll32] RunCommand succeeded\n");
}

}  // namespace ky
