#include "host/deletion/folder_target.h"

#include <algorithm>

#include "installer/utils/base/strings/case_fold.h"

namespace host {

namespace {

constexpr std::wstring_view verbatim = L"\\\\?\\";

bool is_letter(wchar_t c) {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

std::wstring cleaned(std::wstring_view path) {
  std::wstring clean(path);
  std::replace(clean.begin(), clean.end(), L'/', L'\\');
  if (clean.size() > 3 && clean.ends_with(L'\\')) clean.pop_back();
  return clean;
}

const wchar_t* refusal_of_part(std::wstring_view part) {
  if (part.empty()) return L"a part of the path is empty";
  if (part.find(L':') != std::wstring_view::npos) return L"the path names a stream";
  if (part.ends_with(L'.') || part.ends_with(L' ')) return L"a part of the path ends in a dot or a blank";
  return nullptr;
}

/// True when `inner` is `outer` or lies below it.
bool holds(std::wstring_view outer, std::wstring_view inner) {
  if (inner.size() < outer.size() || !base::strings::equal_ignoring_case(outer, inner.substr(0, outer.size()))) {
    return false;
  }
  return inner.size() == outer.size() || inner[outer.size()] == L'\\';
}

}  // namespace

FolderTarget decide_folder(std::wstring_view path, std::span<const std::wstring> protected_folders) {
  const std::wstring clean = cleaned(path);
  if (clean.empty()) return {L"the path is empty", {}};
  if (clean.size() < 3 || !is_letter(clean[0]) || clean[1] != L':' || clean[2] != L'\\') {
    return {L"the path is not a whole path on a drive", {}};
  }
  if (clean.size() == 3) return {L"the path is a drive's root", {}};

  FolderTarget target;
  target.steps.push_back(std::wstring(verbatim) + clean.substr(0, 3));
  std::size_t begin = 3;
  while (begin <= clean.size()) {
    const std::size_t end = std::min(clean.find(L'\\', begin), clean.size());
    if (const wchar_t* const refusal = refusal_of_part(std::wstring_view(clean).substr(begin, end - begin))) {
      return {refusal, {}};
    }
    target.steps.push_back(std::wstring(verbatim) + clean.substr(0, end));
    begin = end + 1;
  }
  for (const std::wstring& folder : protected_folders) {
    if (holds(clean, cleaned(folder))) return {L"the system needs this folder", {}};
  }
  return target;
}

const wchar_t* shown(const std::wstring& step) {
  return step.c_str() + (step.starts_with(verbatim) ? verbatim.size() : 0);
}

}  // namespace host
