#include "platform/machine/hive_content.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include "installer/utils/base/strings/utf8.h"
#include "platform/machine/document.h"
#include "platform/machine/document_sections.h"

namespace machine {

namespace {

constexpr std::string_view first_line = "machine hive 1\n";

void write_below(const RegistryTree& tree, KeyId id, const std::wstring& path, picojson::array& out) {
  const KeyNode& key = tree.keys.at(id);
  picojson::object row = write_key_facts(key);
  if (!row.empty() || (key.subkeys.empty() && !path.empty())) {
    row["key"] = json_text(path);
    out.emplace_back(row);
  }
  for (const auto& [name, subkey] : key.subkeys) {
    if (tree.keys.at(subkey).is_volatile) continue;
    write_below(tree, subkey, path.empty() ? name : path + L"\\" + name, out);
  }
}

void read_rows(const JsonNode& rows, RegistryTree& tree, KeyId root) {
  std::set<KeyId> told;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const JsonNode row = rows.at(i);
    row.only({"key", "values", "link", "protected"});
    const JsonNode where = row.member("key");
    const std::wstring path = where.text();
    const std::vector<std::wstring> parts = split_path(path);
    std::wstring clean;
    for (const std::wstring& part : parts) {
      if (part.size() > 255) where.fail("a key's name has at most 255 characters");
      clean.append(clean.empty() ? 0 : 1, L'\\').append(part);
    }
    if (clean != path) where.fail("a key's path below the hive's root is wanted here, as \"Software\\Name\"");
    const KeyId id = make_keys_below(tree, root, parts);
    if (!told.insert(id).second) where.fail("this key stands there twice");
    read_key_facts(row, tree.keys.at(id));
  }
}

// The rows that a content holds; nothing where it is no hive.
[[nodiscard]] std::optional<picojson::value> rows_of(const std::vector<std::uint8_t>& bytes) {
  if (bytes.size() < first_line.size() || !std::equal(first_line.begin(), first_line.end(), bytes.begin())) {
    return std::nullopt;
  }
  const std::string text(bytes.begin() + static_cast<std::ptrdiff_t>(first_line.size()), bytes.end());
  try {
    return parse_json(text, "hive");
  } catch (const DocumentError&) {
    return std::nullopt;
  }
}

}  // namespace

std::vector<std::uint8_t> hive_bytes(const RegistryTree& tree, KeyId root) {
  picojson::array rows;
  write_below(tree, root, L"", rows);
  const std::string text = std::string(first_line) + picojson::value(rows).serialize();
  return {text.begin(), text.end()};
}

bool read_hive(const std::vector<std::uint8_t>& bytes, RegistryTree& tree, KeyId root) {
  const auto rows = rows_of(bytes);
  if (!rows) return false;
  try {
    read_rows(JsonNode(*rows, "hive"), tree, root);
    return true;
  } catch (const DocumentError&) {
    return false;
  }
}

void remove_keys(RegistryTree& tree, KeyId key) {
  const auto subkeys = tree.keys.at(key).subkeys;
  for (const auto& entry : subkeys) remove_keys(tree, entry.second);
  remove_key(tree, key);
}

std::vector<std::uint8_t> read_hive_rows(const JsonNode& node) {
  RegistryTree tree;
  const KeyId root = add_key(tree, tree.users, L"hive");
  read_rows(node, tree, root);
  return hive_bytes(tree, root);
}

std::optional<picojson::value> write_hive_rows(const std::vector<std::uint8_t>& bytes) {
  auto rows = rows_of(bytes);
  if (!rows) return std::nullopt;
  RegistryTree tree;
  const KeyId root = add_key(tree, tree.users, L"hive");
  // What somebody else wrote may mean the same in other words.
  if (!read_hive(bytes, tree, root) || hive_bytes(tree, root) != bytes) return std::nullopt;
  return rows;
}

}  // namespace machine
