#include <algorithm>
#include <deque>
#include <memory>
#include <string>
#include <utility>

#include "platform/machine/file_lookup.h"
#include "platform/machine/files.h"
#include "platform/machine/handles.h"
#include "platform/machine/open_file.h"
#include "platform/machine/wildcard.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

// Searches and temporary names.
namespace machine {

namespace code = ports::code;
using ports::Handle;

namespace {

struct Search final : Object {
  Search() : Object(ObjectKind::search) {}
  ports::Mutex mutex;
  std::deque<ports::FolderRow> rows KY_GUARDED_BY(mutex);
};

// The last part as the file system is asked for it. Cleaning a path takes the closing dot that "*." needs.
[[nodiscard]] std::wstring expression_of(std::wstring_view pattern, std::wstring_view last) {
  const bool dotless = name_ends_with(pattern, L"*.");
  return search_expression(std::wstring(last) + (dotless ? L"." : L""));
}

// A child is found by its short name too.
[[nodiscard]] bool found_by(const FileNode& folder, const std::wstring& name, const std::wstring& expression) {
  const Case rule = case_sensitive(folder) ? Case::exact : Case::folded;
  return matches(expression, name, rule) ||
         std::any_of(folder.short_names.begin(), folder.short_names.end(),
                     [&](const auto& entry) { return entry.second == name && matches(expression, entry.first); });
}

[[nodiscard]] std::deque<ports::FolderRow> rows_of(const FileTree& tree, NodeId folder,
                                                   const std::wstring& expression) {
  std::deque<ports::FolderRow> rows;
  const FileNode& node = tree.nodes.at(folder);
  // A plain name need not be compared with all that the folder holds.
  if (expression.find_first_of(L"*?<>\"") == std::wstring::npos) {
    const auto found = find_child(node, expression);
    if (found == node.children.end()) return rows;
    const FileNode& one = tree.nodes.at(found->second);
    return {{found->first, reported_attributes(one), one.size, found->second}};
  }
  if (!node.places.empty()) {
    const FileNode& above = tree.nodes.at(node.places.front().folder);
    if (matches(expression, L".")) rows.push_back({L".", reported_attributes(node), 0, folder});
    if (matches(expression, L"..")) rows.push_back({L"..", reported_attributes(above), 0, node.places.front().folder});
  }
  for (const auto& [name, id] : node.children) {
    const FileNode& one = tree.nodes.at(id);
    if (found_by(node, name, expression)) rows.push_back({name, reported_attributes(one), one.size, id});
  }
  return rows;
}

// In upper-case hexadecimal, without leading zeros, as the system writes it.
[[nodiscard]] std::wstring temporary_name(std::wstring_view folder, std::wstring_view prefix, std::uint32_t number) {
  std::wstring digits;
  for (std::uint32_t left = number & 0xFFFF; left != 0; left >>= 4) {
    digits.insert(digits.begin(), L"0123456789ABCDEF"[left & 0xF]);
  }
  std::wstring name(folder);
  if (name.empty() || (name.back() != L'\\' && name.back() != L'/')) name += L'\\';
  return name.append(prefix.substr(0, 3)).append(digits).append(L".tmp");
}

void put(std::wstring_view text, std::span<wchar_t> into) {
  std::copy(text.begin(), text.end(), into.begin());
  into[text.size()] = 0;
}

}  // namespace

std::uint32_t Files::temp_folder(std::span<wchar_t> into) {
  const ports::Lock lock(world_.mutex);
  const std::wstring path = world_.state.environment.temp + L"\\";
  if (path.size() >= into.size()) return static_cast<std::uint32_t>(path.size() + 1);
  put(path, into);
  return static_cast<std::uint32_t>(path.size());
}

std::uint32_t Files::temp_file(const wchar_t* folder, const wchar_t* prefix, std::uint32_t unique,
                               std::span<wchar_t, 260> into) {
  constexpr std::size_t room_for_name = 14;
  const ports::Lock lock(world_.mutex);
  FileTree& tree = world_.state.files;
  const std::wstring_view where = folder == nullptr ? L"" : folder;
  const std::wstring_view start = prefix == nullptr ? L"" : prefix;
  if (where.size() > into.size() - room_for_name) return failed(code::buffer_overflow, 0U);
  const Found place = found(folder, LastLink::followed);
  if (place.error != code::success || !tree.nodes.at(place.node).folder) {
    return failed(code::directory_name_invalid, 0U);
  }
  if ((unique & 0xFFFF) != 0) {
    put(temporary_name(where, start, unique), into);
    return unique & 0xFFFF;
  }
  if (tree.nodes.at(place.node).protect) return failed(code::access_denied, 0U);
  for (std::uint32_t tries = 0; tries < 0xFFFF; ++tries) {
    const std::uint32_t number = tree.next_temporary;
    tree.next_temporary = number >= 0xFFFF ? 1 : number + 1;
    const std::wstring name = temporary_name(where, start, number);
    Path clean;
    if (!done(parsed(name.c_str(), clean))) return 0;
    if (child(tree, place.node, clean.parts.back()) != 0) continue;
    FileNode made;
    made.attributes = ports::file_attribute::archive;
    add_node(tree, place.node, clean.parts.back(), std::move(made));
    put(name, into);
    return number;
  }
  return failed(code::file_exists, 0U);
}

Handle Files::find_first(const wchar_t* pattern, ports::FolderRow& row) {
  const auto search = std::make_shared<Search>();
  {
    const ports::Lock lock(world_.mutex);
    const FileTree& tree = world_.state.files;
    ParsedPath parsed_pattern =
        parse_path(pattern == nullptr ? L"" : pattern, world_.state.environment.current_folder, true);
    if (!done(parsed_pattern.error)) return Handle::invalid;
    Path& path = parsed_pattern.path;
    if (path.parts.empty() || path.folder_wanted) return failed(code::file_not_found, Handle::invalid);
    const std::wstring expression = expression_of(pattern, path.parts.back());
    path.parts.pop_back();
    const Found folder = look_up(tree, path, LastLink::followed);
    const ports::ErrorCode error = folder.error == code::file_not_found ? code::path_not_found : folder.error;
    if (!done(error)) return Handle::invalid;
    if (!tree.nodes.at(folder.node).folder) return failed(code::directory_name_invalid, Handle::invalid);
    const ports::Lock search_lock(search->mutex);
    search->rows = rows_of(tree, folder.node, expression);
    if (search->rows.empty()) return failed(code::file_not_found, Handle::invalid);
    row = std::move(search->rows.front());
    search->rows.pop_front();
  }
  return handles_.open(search);
}

bool Files::list(Handle handle, bool restart, std::vector<ports::FolderRow>& rows) {
  const auto folder = handles_.find_as<OpenFile>(handle);
  if (folder == nullptr) return fail(code::invalid_handle);
  if ((folder->access & ports::file_access::list_directory) == 0) return fail(code::access_denied);
  const ports::Lock lock(world_.mutex);
  const FileTree& tree = world_.state.files;
  if (!tree.nodes.at(folder->node).folder) return fail(code::invalid_parameter);
  if (folder->listed && !restart) return fail(code::no_more_files);
  const std::deque<ports::FolderRow> all = rows_of(tree, folder->node, L"*");
  rows.assign(all.begin(), all.end());
  folder->listed = true;
  return true;
}

bool Files::find_next(Handle handle, ports::FolderRow& row) {
  const auto search = handles_.find_as<Search>(handle);
  if (search == nullptr) return fail(code::invalid_handle);
  const ports::Lock lock(search->mutex);
  if (search->rows.empty()) return fail(code::no_more_files);
  row = std::move(search->rows.front());
  search->rows.pop_front();
  return true;
}

bool Files::find_close(Handle handle) {
  if (handles_.find_as<Search>(handle) == nullptr) return fail(code::invalid_handle);
  handles_.close(handle);
  return true;
}

}  // namespace machine
