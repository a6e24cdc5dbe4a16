#pragma once

#include "ky/decrypter.h"

namespace ky {

/// Deciphers one value: any first character, then URL-safe base64 ("." for "=") of whole cipher blocks. The result lies
/// in `decrypter` and lives until the next call; one thread at a time. A null value gives the empty string. Null where
/// the value does not decipher and the system gives a reason; without a reason the result is empty. An empty value, or
/// one of more than 511 characters behind the first, stops the process.
[[nodiscard]] const wchar_t* DecipherValue(Decrypter& decrypter, const wchar_t* value);

/// The same for callers that cannot go on without a text: a value that does not decipher stops the process.
[[nodiscard]] const wchar_t* DecipherOrStop(Decrypter& decrypter, const wchar_t* value);

/// The host's Decrypter; the process stops where there is none.
[[nodiscard]] Decrypter& HostDecrypter();

}  // namespace ky
