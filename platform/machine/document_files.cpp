#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "installer/utils/base/strings/base64.h"
#include "installer/utils/base/strings/utf8.h"
#include "platform/machine/document_sections.h"
#include "platform/machine/file_lookup.h"
#include "platform/machine/file_rules.h"

namespace machine {

namespace {

namespace attribute = ports::file_attribute;

struct Bit {
  const char* name;
  std::uint32_t bit;
};
constexpr std::array<Bit, 7> attribute_names = {{{"read_only", attribute::read_only},
                                                 {"hidden", attribute::hidden},
                                                 {"system", attribute::system},
                                                 {"archive", attribute::archive},
                                                 {"temporary", attribute::temporary},
                                                 {"offline", 0x1000},
                                                 {"not_indexed", 0x2000}}};
constexpr std::array<Bit, 3> access_names = {{{"read", file_right::read_data},
                                              {"write", file_right::write_data | file_right::append_data},
                                              {"delete", ports::file_access::erase}}};
constexpr std::array<Bit, 3> share_names = {
    {{"read", ports::file_share::read}, {"write", ports::file_share::write}, {"delete", ports::file_share::erase}}};

template <std::size_t count>
[[nodiscard]] std::uint32_t read_bits(const JsonNode& node, const std::array<Bit, count>& names) {
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < node.size(); ++i) {
    const JsonNode item = node.at(i);
    const std::string& name = item.utf8();
    const auto found = std::find_if(names.begin(), names.end(), [&name](const Bit& bit) { return bit.name == name; });
    if (found == names.end()) item.fail("\"" + name + "\" is not known here");
    bits |= found->bit;
  }
  return bits;
}

template <std::size_t count>
[[nodiscard]] picojson::value write_bits(std::uint32_t bits, const std::array<Bit, count>& names) {
  picojson::array out;
  for (const Bit& bit : names) {
    if ((bits & bit.bit) != 0) out.emplace_back(std::string(bit.name));
  }
  return picojson::value(out);
}

[[nodiscard]] std::uint32_t default_attributes(const FileNode& node) {
  return node.folder ? 0 : attribute::archive;
}

void read_link(const JsonNode& node, FileNode& out) {
  node.only({"symbolic", "junction"});
  if (node.object().size() != 1) node.fail("either \"symbolic\" or \"junction\" is wanted here");
  const bool junction = node.has("junction");
  out.link = junction ? LinkKind::junction : LinkKind::symbolic;
  out.folder = out.folder || junction;
  out.target = node.member(junction ? "junction" : "symbolic").text();
  if (out.target.empty()) node.fail("the target is empty");
}

void read_holds(const JsonNode& node, FileNode& out) {
  for (std::size_t i = 0; i < node.size(); ++i) {
    const JsonNode row = node.at(i);
    row.only({"access", "share"});
    const auto share = row.find("share");
    out.holds.push_back({read_bits(row.member("access"), access_names), share ? read_bits(*share, share_names) : 0, 0});
  }
}

void check(const JsonNode& row, const FileNode& node) {
  const bool content = row.has("text") || row.has("base64") || row.has("hive") || row.has("size");
  if (row.has("text") && row.has("base64")) row.fail("\"text\" and \"base64\" exclude each other");
  if (row.has("hive") && (row.has("text") || row.has("base64") || row.has("size"))) {
    row.fail("\"hive\" is the whole content");
  }
  if (row.has("mounted") && !row.has("hive")) row.fail("what is \"mounted\" is a \"hive\"");
  if (content && node.folder) row.fail("a folder has no content");
  if (content && node.link != LinkKind::none) row.fail("a link has no content");
  if (row.has("signature") && (node.folder || node.link != LinkKind::none)) row.fail("only a file is signed");
  if (case_sensitive(node) && (!node.folder || node.link != LinkKind::none)) {
    row.fail("only a folder is \"case_sensitive\"");
  }
  if (node.mapped && node.folder) row.fail("a folder does not run");
  if (node.size < node.bytes.size()) row.fail("\"size\" is less than the content");
  if (node.going && node.holds.empty()) row.fail("what is \"deleting\" is held \"open\" by somebody");
}

[[nodiscard]] FileNode read_node(const JsonNode& row) {
  row.only({"path", "folder", "attributes", "text", "base64", "hive", "mounted", "size", "link", "running", "open",
            "deleting", "protected", "short_name", "case_sensitive", "signature", "store"});
  FileNode node;
  node.folder = row.flag("folder");
  if (const auto link = row.find("link")) read_link(*link, node);
  const auto attributes = row.find("attributes");
  node.attributes = attributes ? read_bits(*attributes, attribute_names) : default_attributes(node);
  const auto hive = row.find("hive");
  node.bytes = hive ? read_hive_rows(*hive) : read_content(row);
  const auto size = row.find("size");
  node.size = size ? static_cast<std::uint64_t>(size->integer(0, std::int64_t{1} << 53)) : node.bytes.size();
  node.mapped = row.flag("running");
  node.protect = row.flag("protected");
  if (const auto holds = row.find("open")) read_holds(*holds, node);
  node.going = row.flag("deleting");
  if (const auto store = row.find("store")) node.store = read_path_text(*store);
  set_case_sensitive(node, row.flag("case_sensitive"));
  if (const auto signature = row.find("signature")) node.signature = read_signature(*signature);
  check(row, node);
  return node;
}

[[nodiscard]] FilePlace read_place(const JsonNode& row, FileTree& tree) {
  const JsonNode where = row.member("path");
  Path path = read_path(where);
  if (path.parts.empty()) where.fail("a drive is none of the files");
  if (tree.substitutes.contains(path.drive)) where.fail("the files of a substitute lie on another drive");
  if (!tree.volumes.contains(path.drive)) where.fail("there is no such drive");
  std::wstring name = std::move(path.parts.back());
  path.parts.pop_back();
  const NodeId folder = make_folders(tree, path);
  if (folder == 0) where.fail("a file or link stands where a folder is wanted");
  return {folder, std::move(name)};
}

// Folders may have been made for what stands in them before their own row comes.
NodeId place_node(const JsonNode& row, FileTree& tree, std::set<NodeId>& told) {
  FilePlace place = read_place(row, tree);
  FileNode node = read_node(row);
  if (node.going) node.going_place = place;
  NodeId id = child(tree, place.folder, place.name);
  if (id == 0) {
    id = add_node(tree, place.folder, place.name, std::move(node));
  } else {
    FileNode& there = tree.nodes.at(id);
    const bool implied = told.count(id) == 0 && there.folder;
    if (!implied) row.member("path").fail("this path stands there twice");
    if (!node.folder || node.link != LinkKind::none) row.member("path").fail("other files lie below this path");
    node.children.insert(there.children.begin(), there.children.end());
    node.places = {place};
    node.root = there.root;
    Children& beside = tree.nodes.at(place.folder).children;
    beside.erase(place.name);
    beside.emplace(place.name, id);
    there = std::move(node);
  }
  told.insert(id);
  return id;
}

// What is in the hive stands in the rows of the registry meanwhile.
void read_mount(const JsonNode& node, State& state, NodeId file) {
  const KeyId key = make_keys(state.registry, read_key_path(node));
  if (state.registry.keys.at(key).parent == 0 || !hive_root(state.registry, key)) {
    node.fail("a hive is mounted right below a root");
  }
  if (state.hives.count(key) != 0) node.fail("two hives are mounted there");
  hold_hive(state, key, file);
}

void place_name(const JsonNode& row, FileTree& tree) {
  row.only({"path", "same_as", "short_name"});
  const JsonNode same = row.member("same_as");
  const Found found = look_up(tree, read_path(same), LastLink::itself);
  if (found.node == 0) same.fail("there is no such file");
  if (tree.nodes.at(found.node).folder) same.fail("a folder has one name alone");
  const FilePlace place = read_place(row, tree);
  if (child(tree, place.folder, place.name) != 0) row.member("path").fail("this path stands there twice");
  if (&volume_of(tree, place.folder) != &volume_of(tree, found.node)) same.fail("it lies on another drive");
  add_name(tree, found.node, place);
}

// Up to eight units, and behind a dot up to three.
[[nodiscard]] bool is_short(std::wstring_view name) {
  const std::size_t dot = std::min(name.find(L'.'), name.size());
  const std::wstring_view end = name.substr(std::min(dot + 1, name.size()));
  return dot >= 1 && dot <= 8 && end.size() <= 3 && (dot == name.size() || !end.empty()) &&
         name.find_first_of(L" \"*+,/:;<=>?[\\]|") == std::wstring_view::npos && end.find(L'.') == end.npos;
}

void place_short_name(const JsonNode& row, FileTree& tree) {
  const JsonNode member = row.member("short_name");
  std::wstring name = member.text();
  if (!is_short(name)) member.fail("a short name is wanted here, as \"PROGRA~1\" or \"README~1.TXT\"");
  FilePlace place = read_place(row, tree);
  FileNode& folder = tree.nodes.at(place.folder);
  if (find_child(folder, name) != folder.children.end()) member.fail("this name is taken in the folder");
  folder.short_names.emplace(std::move(name), std::move(place.name));
}

// Which names are the same is to be known of a folder before anything is put into it.
[[nodiscard]] std::vector<std::size_t> case_sensitive_first(const JsonNode& files) {
  std::vector<std::pair<std::size_t, std::size_t>> order;  // by depth
  for (std::size_t i = 0; i < files.size(); ++i) {
    const JsonNode row = files.at(i);
    if (row.has("same_as")) continue;
    const bool first = row.flag("case_sensitive");
    order.emplace_back(first ? read_path(row.member("path")).parts.size() : std::numeric_limits<std::size_t>::max(), i);
  }
  std::stable_sort(order.begin(), order.end());
  std::vector<std::size_t> rows;
  for (const auto& entry : order) rows.push_back(entry.second);
  return rows;
}

}  // namespace

Path read_path(const JsonNode& node) {
  // Names that only a verbatim path can make stand in the document as well.
  const std::wstring text = node.text();
  ParsedPath parsed = parse_path(L"\\\\?\\" + text, L"C:\\");
  const bool dots = std::any_of(parsed.path.parts.begin(), parsed.path.parts.end(),
                                [](const std::wstring& part) { return part == L"." || part == L".."; });
  if (parsed.error != 0 || dots || parsed.path.folder_wanted) {
    node.fail("a full path is wanted here, as \"C:\\Folder\\file.txt\"");
  }
  return std::move(parsed.path);
}

std::wstring read_path_text(const JsonNode& node) {
  return to_text(read_path(node));
}

std::vector<std::uint8_t> read_content(const JsonNode& row) {
  if (const auto text = row.find("text")) return {text->utf8().begin(), text->utf8().end()};
  const auto encoded = row.find("base64");
  if (!encoded) return {};
  auto bytes = base::strings::decode_base64(encoded->utf8());
  if (!bytes) encoded->fail("this is not base64");
  return std::move(*bytes);
}

void write_content(const std::vector<std::uint8_t>& bytes, picojson::object& row) {
  const std::string text(bytes.begin(), bytes.end());
  const bool plain = std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) {
    return byte == '\t' || byte == '\n' || byte == '\r' || (byte >= 0x20 && byte != 0x7F);
  });
  if (plain && !base::strings::first_ill_formed(text)) {
    row["text"] = picojson::value(text);
  } else {
    row["base64"] = picojson::value(base::strings::encode_base64(bytes));
  }
}

void read_files(const JsonNode& node, State& state) {
  std::set<NodeId> told;
  for (const std::size_t i : case_sensitive_first(node)) {
    const JsonNode row = node.at(i);
    const NodeId id = place_node(row, state.files, told);
    if (const auto mounted = row.find("mounted")) read_mount(*mounted, state, id);
  }
  for (std::size_t i = 0; i < node.size(); ++i) {
    if (node.at(i).has("same_as")) place_name(node.at(i), state.files);
  }
  for (std::size_t i = 0; i < node.size(); ++i) {
    if (node.at(i).has("short_name")) place_short_name(node.at(i), state.files);
  }
}

namespace {

[[nodiscard]] picojson::object write_node(const FileNode& node) {
  picojson::object row;
  if (node.folder && node.link != LinkKind::junction) row["folder"] = picojson::value(true);
  if (node.attributes != default_attributes(node)) row["attributes"] = write_bits(node.attributes, attribute_names);
  if (node.link != LinkKind::none) {
    picojson::object link;
    link[node.link == LinkKind::junction ? "junction" : "symbolic"] = json_text(node.target);
    row["link"] = picojson::value(link);
  } else if (const auto hive = node.size == node.bytes.size() ? write_hive_rows(node.bytes.all()) : std::nullopt) {
    row["hive"] = *hive;
  } else if (!node.folder) {
    if (!node.bytes.empty()) write_content(node.bytes.all(), row);
    if (node.size != node.bytes.size() || node.size == 0) row["size"] = json_number(node.size);
  }
  if (!node.store.empty()) row["store"] = json_text(node.store);
  if (case_sensitive(node)) row["case_sensitive"] = picojson::value(true);
  if (node.signature) row["signature"] = write_signature(*node.signature);
  if (node.mapped) row["running"] = picojson::value(true);
  if (node.protect) row["protected"] = picojson::value(true);
  picojson::array holds;
  for (const FileHold& hold : node.holds) {
    if (hold.owner != 0) continue;
    picojson::object one;
    one["access"] = write_bits(hold.access, access_names);
    one["share"] = write_bits(hold.share, share_names);
    holds.emplace_back(one);
  }
  // What goes when this process's last handle is closed is as good as there.
  if (node.going && !holds.empty()) row["deleting"] = picojson::value(true);
  if (!holds.empty()) row["open"] = picojson::value(holds);
  return row;
}

using MountPaths = std::map<NodeId, std::wstring>;

// A folder needs no row of its own when something in it has one and nothing else is to be said.
void write_below(const FileTree& tree, NodeId folder, const std::wstring& path, const MountPaths& mounted,
                 picojson::array& out) {
  const FileNode& above = tree.nodes.at(folder);
  for (const auto& [name, id] : above.children) {
    const FileNode& node = tree.nodes.at(id);
    const std::wstring own = path + L"\\" + name;
    picojson::object row;
    if (node.places.front() == FilePlace{folder, name}) {
      row = write_node(node);
      if (const auto at = mounted.find(id); at != mounted.end()) row["mounted"] = json_text(at->second);
    } else {
      row["same_as"] = json_text(path_of(tree, id));
    }
    for (const auto& [short_name, in_full] : above.short_names) {
      if (in_full == name) row["short_name"] = json_text(short_name);
    }
    const bool implied = node.folder && !node.children.empty() && row.size() == 1;
    if (!implied) {
      row["path"] = json_text(own);
      out.emplace_back(row);
    }
    write_below(tree, id, own, mounted, out);
  }
}

}  // namespace

picojson::value write_files(const State& state) {
  MountPaths mounted;
  for (const auto& [key, file] : state.hives) mounted.emplace(file, key_path(state.registry, key));
  picojson::array out;
  for (const auto& [drive, volume] : state.files.volumes) write_below(state.files, volume.root, drive, mounted, out);
  return picojson::value(out);
}

}  // namespace machine
