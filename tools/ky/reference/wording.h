#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/script/command_schema.h"

// How schema document and pages put what the schema says.
namespace reference {

/// The first line of what is generated, for whoever would edit it.
inline constexpr std::string_view generated_note = "Generated from host/script/schema by `./dev reference`.";

/// A form in a few words, as the forms' table in the index names it.
[[nodiscard]] std::string_view words_of(host::Form form);

/// What a form asks of a value, in one sentence.
[[nodiscard]] std::string_view explained(host::Form form);

/// The attribute's name as an author finds it; a family's with "<n>".
[[nodiscard]] std::string shown_name(const host::AttributeSchema& attribute);

/// The meaning, and behind it the sentences on what the attribute needs, its choices and its limit.
[[nodiscard]] std::string whole_meaning(const host::AttributeSchema& attribute);

/// "`a`", "`a` and `b`", "`a`, `b` and `c`".
[[nodiscard]] std::string listed(std::span<const std::string_view> names);

/// `text` in the backquotes of code.
[[nodiscard]] std::string code(std::string_view text);

/// "C" and "Command" around the name, but for those commands whose class is called otherwise.
[[nodiscard]] std::string class_of(const host::CommandSchema& command);

}  // namespace reference
