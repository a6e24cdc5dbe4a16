#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

#include "installer/utils/base/strings/base64.h"
#include "installer/utils/base/strings/utf8.h"
#include "platform/machine/document_sections.h"

namespace machine {

namespace {

using ports::RegistryType;
using ports::RegistryValue;

template <class Number>
[[nodiscard]] std::vector<std::uint8_t> little_endian(Number number) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < sizeof(Number); ++i) bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
  return bytes;
}

template <class Number>
[[nodiscard]] Number number_of(const std::vector<std::uint8_t>& bytes) {
  Number number = 0;
  for (std::size_t i = 0; i < sizeof(Number); ++i) number |= static_cast<Number>(Number{bytes[i]} << (8 * i));
  return number;
}

[[nodiscard]] RegistryValue text_value(RegistryType type, std::wstring_view text) {
  return {type, text_bytes(text)};
}

[[nodiscard]] RegistryValue list_value(const std::vector<std::wstring>& items) {
  std::wstring all;
  for (const std::wstring& item : items) all.append(item).append(1, L'\0');
  return {RegistryType::text_list, text_bytes(all)};
}

[[nodiscard]] RegistryValue read_list(const JsonNode& node) {
  std::vector<std::wstring> items;
  for (std::size_t i = 0; i < node.size(); ++i) {
    items.push_back(node.at(i).text());
    if (items.back().empty()) node.at(i).fail("an empty text ends the list");
  }
  return list_value(items);
}

[[nodiscard]] RegistryValue read_number64(const JsonNode& node) {
  const std::string& text = node.utf8();
  std::uint64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size() || text != std::to_string(number)) {
    node.fail("a number in decimal digits is wanted here, as a text");
  }
  return {RegistryType::number64, little_endian(number)};
}

[[nodiscard]] std::vector<std::uint8_t> read_base64(const JsonNode& node) {
  auto bytes = base::strings::decode_base64(node.utf8());
  if (!bytes) node.fail("this is not base64");
  return std::move(*bytes);
}

// Text whose bytes are those that `text_value` makes of it; nothing otherwise.
[[nodiscard]] std::optional<std::wstring> plain_text(const RegistryValue& value) {
  std::wstring text = text_units(value.bytes);
  if (text.empty() || text.back() != 0) return std::nullopt;
  text.pop_back();
  const bool plain =
      text.find(L'\0') == std::wstring::npos && base::strings::is_utf16(text) && text_bytes(text) == value.bytes;
  return plain ? std::optional(text) : std::nullopt;
}

[[nodiscard]] std::optional<picojson::array> plain_list(const RegistryValue& value) {
  const std::wstring units = text_units(value.bytes);
  std::vector<std::wstring> items;
  picojson::array out;
  for (std::size_t at = 0; at < units.size() && units[at] != 0;) {
    items.emplace_back(units.c_str() + at);
    if (!base::strings::is_utf16(items.back())) return std::nullopt;
    out.push_back(json_text(items.back()));
    at += items.back().size() + 1;
  }
  return list_value(items) == value ? std::optional(out) : std::nullopt;
}

[[nodiscard]] picojson::value single(const char* name, picojson::value value) {
  picojson::object out;
  out[name] = std::move(value);
  return picojson::value(out);
}

}  // namespace

RegistryValue read_value(const JsonNode& node) {
  if (node.is_text()) return text_value(RegistryType::text, node.text());
  if (node.is_number()) return {RegistryType::number, little_endian(node.number32())};
  if (node.is_array()) return read_list(node);
  if (!node.is_object()) node.fail("a text, a number, a list or an object is wanted here");
  if (node.has("type")) {
    node.only({"type", "bytes"});
    return {static_cast<RegistryType>(node.member("type").number32()), read_base64(node.member("bytes"))};
  }
  node.only({"expandable", "binary", "number64"});
  if (node.object().size() != 1) node.fail("one of \"expandable\", \"binary\" and \"number64\" is wanted here");
  if (const auto text = node.find("expandable")) return text_value(RegistryType::expandable, text->text());
  if (const auto bytes = node.find("binary")) return {RegistryType::binary, read_base64(*bytes)};
  return read_number64(node.member("number64"));
}

picojson::value write_value(const RegistryValue& value) {
  if (value.type == RegistryType::text || value.type == RegistryType::expandable) {
    if (const auto text = plain_text(value)) {
      return value.type == RegistryType::text ? json_text(*text) : single("expandable", json_text(*text));
    }
  } else if (value.type == RegistryType::number && value.bytes.size() == 4) {
    return json_number(number_of<std::uint32_t>(value.bytes));
  } else if (value.type == RegistryType::number64 && value.bytes.size() == 8) {
    return single("number64", picojson::value(std::to_string(number_of<std::uint64_t>(value.bytes))));
  } else if (value.type == RegistryType::binary) {
    return single("binary", picojson::value(base::strings::encode_base64(value.bytes)));
  } else if (value.type == RegistryType::text_list) {
    if (const auto list = plain_list(value)) return picojson::value(*list);
  }
  picojson::object raw;
  raw["type"] = json_number(static_cast<std::uint32_t>(value.type));
  raw["bytes"] = picojson::value(base::strings::encode_base64(value.bytes));
  return picojson::value(raw);
}

std::wstring read_key_path(const JsonNode& node) {
  const std::wstring path = node.text();
  const std::vector<std::wstring> parts = split_path(path);
  const bool rooted =
      !parts.empty() && (same_name(parts.front(), local_machine_name) || same_name(parts.front(), users_name));
  std::wstring clean;
  for (const std::wstring& part : parts) {
    if (part.size() > 255) node.fail("a key's name has at most 255 characters");
    clean.append(clean.empty() ? 0 : 1, L'\\').append(part);
  }
  if (!rooted || clean != path) node.fail("a key's path is wanted here, as \"HKEY_LOCAL_MACHINE\\SOFTWARE\\Name\"");
  return path;
}

void read_key_facts(const JsonNode& row, KeyNode& key) {
  key.is_volatile = row.flag("volatile");
  key.protect = row.flag("protected");
  if (const auto link = row.find("link")) {
    if (row.has("values")) row.fail("a link has no values of its own");
    key.link = true;
    key.values.emplace(link_value_name, RegistryValue{RegistryType::link, text_bytes(link->text(), false)});
  }
  const auto values = row.find("values");
  if (!values) return;
  for (const auto& [name, value] : values->object()) {
    const JsonNode item = values->child(name, value);
    if (name.find('\0') != std::string::npos) item.fail("a NUL cannot stand in a name");
    if (!key.values.emplace(base::strings::to_wide(name), read_value(item)).second)
      item.fail("this value stands there twice");
  }
}

picojson::object write_key_facts(const KeyNode& key) {
  picojson::object row;
  if (key.is_volatile) row["volatile"] = picojson::value(true);
  if (key.protect) row["protected"] = picojson::value(true);
  if (key.link) {
    const auto target = key.values.find(link_value_name);
    row["link"] = json_text(target == key.values.end() ? L"" : text_units(target->second.bytes));
  } else if (!key.values.empty()) {
    picojson::object values;
    for (const auto& [name, value] : key.values) values[base::strings::to_utf8(name)] = write_value(value);
    row["values"] = picojson::value(values);
  }
  return row;
}

void read_registry(const JsonNode& node, State& state) {
  RegistryTree& tree = state.registry;
  std::set<KeyId> told;
  for (std::size_t i = 0; i < node.size(); ++i) {
    const JsonNode row = node.at(i);
    row.only({"key", "values", "volatile", "link", "protected"});
    const KeyId id = make_keys(tree, read_key_path(row.member("key")));
    if (!told.insert(id).second) row.member("key").fail("this key stands there twice");
    read_key_facts(row, tree.keys.at(id));
  }
}

namespace {

void write_below(const RegistryTree& tree, KeyId id, const std::wstring& path, picojson::array& out) {
  const KeyNode& key = tree.keys.at(id);
  picojson::object row = write_key_facts(key);
  if (!row.empty() || (key.subkeys.empty() && key.parent != 0)) {
    row["key"] = json_text(path);
    out.emplace_back(row);
  }
  for (const auto& [name, subkey] : key.subkeys) write_below(tree, subkey, path + L"\\" + name, out);
}

}  // namespace

picojson::value write_registry(const State& state) {
  picojson::array out;
  write_below(state.registry, state.registry.local_machine, std::wstring(local_machine_name), out);
  write_below(state.registry, state.registry.users, std::wstring(users_name), out);
  return picojson::value(out);
}

}  // namespace machine
