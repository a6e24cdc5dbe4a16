#pragma once

#include <string>
#include <string_view>

#include "ky/decrypter.h"
#include "platform/ports/system.h"

namespace host {

class Store;

/// Puts the keys that commands read and none of them writes: the Decrypter first, which the store owns from then on,
/// then the paths, the two refresh events, the modules and the direction of the language. Every path ends in exactly
/// one backslash. Gives the empty string, or what the system could not tell; the run must not start then. What was put
/// by then is the store's to release.
[[nodiscard]] std::string put_host_keys(const ports::System& system, ky::Decrypter* decrypter, Store& store);

/// `path` with exactly one backslash at its end.
[[nodiscard]] std::wstring with_closing_backslash(std::wstring_view path);

/// The folder part of a file's path, with its closing backslash; empty where there is none.
[[nodiscard]] std::wstring folder_of(std::wstring_view file);

}  // namespace host
