#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "diagnostics/log_format.h"
#include "diagnostics/scratch.h"
#include "platform/ports/clock.h"

namespace diagnostics {

/// A length of the sealed form.
void put_length(std::span<std::uint8_t> to, std::uint32_t length);
[[nodiscard]] std::uint32_t length_in(std::span<const std::uint8_t, log_format::length_size> bytes);

/// "[hh:mm:ss:mmm] ".
using TimeStamp = std::array<char, log_format::time_stamp_length>;
[[nodiscard]] TimeStamp time_stamp(const ports::LocalTime& time);

/// What a sealed record holds: stamp, message and a line feed in UTF-16, without terminator.
[[nodiscard]] std::span<const std::uint8_t> plain_line(const TimeStamp& stamp, std::wstring_view message,
                                                       Scratch<std::uint8_t>& into);

/// A record of the fall-back form: stamp, the scrambled message without its last character, and a line end, in UTF-8
/// where an unpaired surrogate becomes U+FFFD. `message` is not empty. The last character is left out on purpose: it is
/// the line feed of nearly all messages, and whoever sends none loses a character.
[[nodiscard]] std::span<const std::uint8_t> scrambled_line(const TimeStamp& stamp, std::wstring_view message,
                                                           std::span<const std::uint8_t> key,
                                                           Scratch<std::uint8_t>& into);

}  // namespace diagnostics
