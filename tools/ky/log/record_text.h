#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace log_tool {

/// Milliseconds since midnight as "hh:mm:ss", `before_milliseconds` and three digits more.
void append_time(std::string& to, std::uint32_t time, char before_milliseconds);

/// A message without the one line end that nearly every message brings along.
[[nodiscard]] std::wstring_view without_line_end(std::wstring_view message);

/// A text for terminals and files: a control character but tab and line feed is shown as "\xNN", so that a message
/// cannot command the terminal, and what follows a line feed is set in by `indent` blanks, so that it cannot pass for a
/// record of its own.
void append_shown(std::string& to, std::wstring_view text, std::size_t indent);

/// A text as a JSON string with its quotation marks. Unpaired surrogates are escaped, and so come through.
void append_json(std::string& to, std::wstring_view text);
/// The same for a script element of a page: nothing in it can end the element or pass for markup.
void append_script_json(std::string& to, std::wstring_view text);

}  // namespace log_tool
