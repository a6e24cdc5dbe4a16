#include "tools/ky/log/findings.h"

#include <algorithm>
#include <string>

#include "tools/ky/log/message_scan.h"

namespace log_tool {

namespace {

constexpr std::int64_t file_not_found = 2;
constexpr std::int64_t path_not_found = 3;
constexpr std::int64_t not_found = 1168;

constexpr std::wstring_view troubles[] = {L"warning:", L"could not", L"cannot", L"failed", L" stays", L"has not ended"};
// Several commands leave it in every run.
constexpr std::wstring_view usual_warning = L"getnextindex called before execute";

/// The words that a code follows.
struct CodeWord {
  std::wstring_view word;
  bool error;  // without a code it is an error all the same
  bool exit_code;
};
constexpr CodeWord code_words[] = {
    {L"result", false, false}, {L"error", true, false}, {L"getlasterror", false, false}, {L"ended with", false, true}};

/// Lower case, with quoted text blanked. An apostrophe inside a word opens nothing.
std::wstring plain_words(std::wstring_view message) {
  std::wstring text(message);
  for (wchar_t& unit : text) unit = unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit | 0x20) : unit;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if ((text[at] != L'\'' && text[at] != L'"') || (at > 0 && is_word(text[at - 1]))) continue;
    const std::size_t close = text.find(text[at], at + 1);
    if (close == std::wstring::npos) break;
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(at) + 1, text.begin() + static_cast<std::ptrdiff_t>(close),
              L' ');
    at = close;
  }
  return text;
}

/// True for a word of a sentence, in contrast to a part of a name or a path.
bool stands_alone(std::wstring_view text, std::size_t at, std::size_t size) {
  if (at > 0 && (is_word(text[at - 1]) || std::wstring_view(L"\\/.-").find(text[at - 1]) != std::wstring::npos)) {
    return false;
  }
  const std::wstring_view behind = text.substr(at + size);
  if (behind.empty()) return true;
  const bool goes_on = behind.size() > 1 && is_word(behind[1]);
  return !is_word(behind[0]) && behind[0] != L'\\' && !(goes_on && (behind[0] == L'.' || behind[0] == L'-'));
}

std::optional<std::int64_t> code_behind(std::wstring_view text) {
  constexpr std::wstring_view between = L" :='(";
  const auto skip = [&] { text.remove_prefix(std::min(text.find_first_not_of(between), text.size())); };
  skip();
  if (text.starts_with(L"code")) {
    text.remove_prefix(4);
    skip();
  }
  return take_code(text);
}

Severity severity_of(std::int64_t code, bool exit_code) {
  if (code == 0) return Severity::none;
  if (exit_code) return Severity::warning;
  const bool absent = code == file_not_found || code == path_not_found || code == not_found;
  return absent ? Severity::none : Severity::error;
}

Severity severity_of_words(std::wstring_view text) {
  const bool trouble = std::any_of(std::begin(troubles), std::end(troubles),
                                   [&](std::wstring_view words) { return text.find(words) != std::wstring::npos; });
  return trouble ? Severity::warning : Severity::none;
}

}  // namespace

Finding finding_of(std::wstring_view message) {
  const std::wstring text = plain_words(message);
  if (text.find(usual_warning) != std::wstring::npos) return {};
  Finding finding{severity_of_words(text), {}, false};
  for (const auto& [word, is_error, exit_code] : code_words) {
    for (std::size_t at = text.find(word); at != std::wstring::npos; at = text.find(word, at + 1)) {
      if (!stands_alone(text, at, word.size())) continue;
      const auto code = code_behind(message.substr(at + word.size()));
      const Severity without_code = is_error ? Severity::error : Severity::none;
      finding.severity = std::max(finding.severity, code ? severity_of(*code, exit_code) : without_code);
      if (!code) continue;
      finding.code = code;
      finding.exit_code = exit_code;
    }
  }
  return finding;
}

}  // namespace log_tool
