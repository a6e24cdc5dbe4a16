#include "installer/desktop/commands/files/deletefilecommand.h"

#include <string>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/expand.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/trace.h"
#include "installer/utils/base/fs/file_name.h"
#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"

namespace ky {

std::uint32_t CDeleteFileCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  attributes.LoadBase(*this);
  const AttributeReading file = attributes.Read(L"pathFile");
  if (!file.usable()) return static_cast<std::uint32_t>(file.present() ? file.read : file.found);
  path = DuplicateString<wchar_t>(DecipherOrStop(decrypter, file.text.c_str()));
  if (const auto reading = attributes.Read(L"renameFile"); reading.usable()) {
    rename = DecipheredInteger(decrypter, reading) == 1;
  }
  return ports::code::success;
}

std::uint32_t CDeleteFileCommand::Execute(std::uintptr_t, std::uintptr_t) {
  ports::Files& files = ports::system().files;
  Trace(L"Executing DeleteFile command\n");
  Trace(L"Rough path file: %s\n", path.get());
  ExpandPath();
  Trace(L"Preparing to delete file %s \n", path.get());
  files.set_attributes(path.get(), ports::file_attribute::normal);  // so that read-only files go too
  if (!files.remove(path.get())) {
    const ports::ErrorCode error = ports::system().errors.last();
    Trace(L"DeleteFile error: %d\n", error);
    const bool absent = error == ports::code::file_not_found || error == ports::code::path_not_found;
    if (rename && !absent) MoveAsideAndBook();
  }
  Trace(L"Finished delete file\n");
  return ports::code::success;
}

/// An undefined variable leaves the path empty, and an empty path deletes nothing.
void CDeleteFileCommand::ExpandPath() {
  std::wstring expanded;
  if (path && ExpandVariables(path.get(), expanded) != ports::code::success) expanded.clear();
  path = DuplicateString<wchar_t>(expanded);
}

void CDeleteFileCommand::MoveAsideAndBook() const {
  ports::Files& files = ports::system().files;
  wchar_t folder[261] = {};
  // A failure leaves the folder empty, and the next call then refuses it.
  static_cast<void>(files.temp_folder(std::span(folder).first(260)));
  wchar_t aside[260] = {};
  if (files.temp_file(folder, base::fs::file_name(path.get()), 0, aside) == 0) {
    Trace(L"%i: %s Error: GetTempFileName failed.\n", index, L"CDeleteFileCommand");
    return;
  }
  const bool moved = files.move(path.get(), aside, ports::move_flag::replace_existing);
  Trace(L"CDeleteFileCommand MoveFile %s to %s res = %i\n", path.get(), aside, moved);
  // Booked whatever the move gave: the empty file made above has to go as well.
  const bool booked = files.move(aside, nullptr, ports::move_flag::delay_until_reboot);
  Trace(L"CDeleteFileCommand MoveFileEx %i\n", booked);
}

}  // namespace ky
