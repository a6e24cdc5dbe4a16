#pragma once

#include <string>

#include "platform/ports/system.h"

namespace contract {

/// Makes an empty folder among the temporary files.
[[nodiscard]] std::wstring make_scratch_folder(const ports::System& system);

/// Removes a folder, or a key below HKEY_LOCAL_MACHINE, with all that is in it, as far as it goes.
void remove_folder_tree(const ports::System& system, const std::wstring& folder);
void remove_key_tree(const ports::System& system, const std::wstring& key);

}  // namespace contract
