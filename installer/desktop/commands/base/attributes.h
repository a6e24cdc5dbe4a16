#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "installer/desktop/commands/base/heap_string.h"
#include "ky/decrypter.h"
#include "ky/install_command.h"
#include "platform/ports/types.h"

namespace ky {

/// What one attribute gave. `found` is `getNamedItem`'s result, 0 when the attribute is there and 1 when it is not;
/// `read` is `get_text`'s, and `text` the text as it stands in the script, which is ciphered.
struct AttributeReading {
  ports::Result found = 0;
  ports::Result read = 0;
  std::wstring text;

  [[nodiscard]] bool present() const { return found == 0; }
  [[nodiscard]] bool usable() const { return found == 0 && read == 0; }
};

/// The attribute map for the time of a load. Takes over the reference in `*map`, as if the pointer had been passed by
/// value, and gives it back at its end.
class Attributes {
 public:
  explicit Attributes(AttributeMap** map);
  ~Attributes();
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  /// Looks the attribute up and reads its text. A null map, and an attribute found with a null node, raise
  /// `winapi::com_error` with E_POINTER.
  [[nodiscard]] AttributeReading Read(const wchar_t* name) const;

  /// The number of attributes; a failing result otherwise.
  [[nodiscard]] ports::Result Length(std::int32_t& out) const;

  /// The text, or nothing: where it is absent or unreadable, the map is null or the name empty. Raises nothing.
  [[nodiscard]] std::optional<std::wstring> ReadAttribute(const wchar_t* name) const;

  /// Deciphers the attribute into `out` and gives 0; where it is absent gives 1359 and leaves `out` alone.
  [[nodiscard]] std::uint32_t ReadCipheredAttribute(Decrypter& decrypter, const wchar_t* name, std::wstring& out) const;

  /// Runs `CInstallCommand::LoadCiphered` of `command` with a second reference.
  std::uint32_t LoadBase(CInstallCommand& command) const;

 private:
  AttributeMap* map_;
};

/// The text in the active code page; null where it does not convert, or takes more bytes than it has characters.
[[nodiscard]] NarrowHeapString NarrowedWithinLength(const wchar_t* text);

/// Deciphered text of a reading, as the attribute forms want it.
[[nodiscard]] std::int32_t DecipheredInteger(Decrypter& decrypter, const AttributeReading& reading);

}  // namespace ky
