#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"

namespace host {

/// Reads the attributes of the host's own commands, deciphered. Texts are expanded when a command runs, not here.
class AttributeReader {
 public:
  /// Takes over the reference in `*map` for the time of a load.
  explicit AttributeReader(ky::AttributeMap** map) : attributes_(map), decrypter_(ky::HostDecrypter()) {}

  /// The attributes that every command has; 0 or the load's result.
  [[nodiscard]] std::uint32_t load_base(ky::CInstallCommand& command) const { return attributes_.LoadBase(command); }

  /// False, and `out` untouched, where the attribute is absent.
  [[nodiscard]] bool text(const wchar_t* name, std::wstring& out) const {
    return attributes_.ReadCipheredAttribute(decrypter_, name, out) == 0;
  }

  [[nodiscard]] std::optional<std::int32_t> integer(const wchar_t* name) const {
    const ky::AttributeReading reading = attributes_.Read(name);
    if (!reading.usable()) return std::nullopt;
    return ky::DecipheredInteger(decrypter_, reading);
  }

  /// True for an integer other than 0.
  [[nodiscard]] bool flag(const wchar_t* name) const { return integer(name).value_or(0) != 0; }

 private:
  ky::Attributes attributes_;
  ky::Decrypter& decrypter_;
};

}  // namespace host
