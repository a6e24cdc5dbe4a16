#include "platform/machine/path.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/machine/names.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;

namespace {

constexpr std::size_t max_part = 255;
constexpr std::wstring_view verbatim_prefix = L"\\\\?\\";

[[nodiscard]] bool has_drive(std::wstring_view text) {
  return text.size() >= 2 && fold(text[0]) >= L'A' && fold(text[0]) <= L'Z' && text[1] == L':';
}

[[nodiscard]] bool forbidden(wchar_t unit) {
  return unit < 32 || std::wstring_view(L"<>:\"|*?/").find(unit) != std::wstring_view::npos;
}

[[nodiscard]] bool good_part(std::wstring_view part, bool wildcards) {
  if (part.size() > max_part) return false;
  return std::none_of(part.begin(), part.end(), [wildcards](wchar_t unit) {
    // The system's own wildcards of DOS times, which a pattern may hold as well.
    if (wildcards && std::wstring_view(L"*?<>\"").find(unit) != std::wstring_view::npos) return false;
    return forbidden(unit);
  });
}

[[nodiscard]] ParsedPath failure(ports::ErrorCode error) {
  return {error, {}};
}

[[nodiscard]] ParsedPath checked(Path path, bool wildcards) {
  for (std::size_t i = 0; i < path.parts.size(); ++i) {
    if (!good_part(path.parts[i], wildcards && i + 1 == path.parts.size())) return failure(code::invalid_name);
  }
  return {code::success, std::move(path)};
}

[[nodiscard]] ParsedPath verbatim(std::wstring_view rest, bool wildcards) {
  if (name_starts_with(rest, L"UNC\\")) return failure(code::bad_network_path);
  if (!has_drive(rest) || (rest.size() > 2 && rest[2] != L'\\')) return failure(code::path_not_found);
  Path path;
  path.drive = {fold(rest[0]), L':'};
  path.parts = split_path(rest.substr(2));
  path.folder_wanted = rest.size() > 3 && rest.back() == L'\\';
  return checked(std::move(path), wildcards);
}

void strip_last(std::wstring& part) {
  while (!part.empty() && (part.back() == L'.' || part.back() == L' ')) part.pop_back();
}

void strip_inner(std::wstring& part) {
  if (part.size() > 1 && part.back() == L'.' && part[part.size() - 2] != L'.') part.pop_back();
}

void append(Path& path, std::wstring_view rest) {
  std::vector<std::wstring> parts = split_path(rest);
  path.folder_wanted = !rest.empty() && rest.back() == L'\\' && !parts.empty();
  for (std::size_t i = 0; i < parts.size(); ++i) {
    std::wstring& part = parts[i];
    if (part == L".") continue;
    if (part == L"..") {
      if (!path.parts.empty()) path.parts.pop_back();
      continue;
    }
    if (i + 1 == parts.size() && !path.folder_wanted) {
      strip_last(part);
    } else {
      strip_inner(part);
    }
    if (!part.empty()) path.parts.push_back(std::move(part));
  }
}

// The start that a relative path goes on from, and what is left of the text.
struct Start {
  Path path;
  std::wstring_view rest;
};

[[nodiscard]] Start start_of(std::wstring_view text, std::wstring_view current_folder) {
  Path here;
  here.drive = {fold(current_folder[0]), L':'};
  if (has_drive(text)) {
    const std::wstring drive = {fold(text[0]), L':'};
    const bool rooted = text.size() > 2 && text[2] == L'\\';
    if (rooted || drive != here.drive) return {{drive, {}, false}, text.substr(2)};
    text.remove_prefix(2);
  } else if (text.front() == L'\\') {
    return {here, text};
  }
  here.parts = split_path(current_folder.substr(2));
  return {here, text};
}

}  // namespace

ParsedPath parse_path(std::wstring_view text, std::wstring_view current_folder, bool wildcards) {
  if (text.substr(0, verbatim_prefix.size()) == verbatim_prefix) {
    return verbatim(text.substr(verbatim_prefix.size()), wildcards);
  }
  std::wstring clean(text);
  std::replace(clean.begin(), clean.end(), L'/', L'\\');
  // What the system makes of blanks alone is the same as of nothing.
  if (clean.find_first_not_of(L' ') == std::wstring::npos) return failure(code::path_not_found);
  if (clean.compare(0, 2, L"\\\\") == 0) {
    return failure(clean.size() > 2 && (clean[2] == L'.' || clean[2] == L'?') ? code::file_not_found
                                                                              : code::bad_network_path);
  }
  if (!has_drive(current_folder)) current_folder = L"C:\\";
  Start start = start_of(clean, current_folder);
  append(start.path, start.rest);
  if (to_text(start.path).size() + (start.path.folder_wanted ? 1 : 0) >= max_path) {
    return failure(code::filename_too_long);
  }
  return checked(std::move(start.path), wildcards);
}

std::wstring to_text(const Path& path) {
  std::wstring text = path.drive;
  if (path.parts.empty()) text += L'\\';
  for (const std::wstring& part : path.parts) text.append(1, L'\\').append(part);
  return text;
}

std::wstring_view last_part(std::wstring_view path) {
  const std::size_t at = path.find_last_of(L'\\');
  return at == std::wstring_view::npos ? path : path.substr(at + 1);
}

}  // namespace machine
