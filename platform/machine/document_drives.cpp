#include <algorithm>

#include "platform/machine/document_sections.h"
#include "platform/machine/drives.h"

namespace machine {

namespace {

void read_volume(const JsonNode& row, Volume& volume) {
  row.only({"serial", "free", "identities", "case_query", "device"});
  if (const auto serial = row.find("serial")) volume.serial = serial->number32();
  volume.identities = row.flag("identities", true);
  volume.case_query = row.flag("case_query", true);
  if (const auto room = row.find("free")) {
    volume.free = static_cast<std::uint64_t>(room->integer(0, std::int64_t{1} << 53));
  }
  if (const auto device = row.find("device")) {
    volume.device = device->text();
    const bool good = name_starts_with(volume.device, L"\\Device\\") && volume.device.back() != L'\\';
    if (!good) device->fail("a device is wanted here, as \"\\Device\\HarddiskVolume1\"");
  }
}

void refuse_double_devices(const JsonNode& drives, const FileTree& tree) {
  std::vector<std::wstring> devices;
  for (const auto& entry : tree.volumes) devices.push_back(device_of(tree, entry.first));
  std::sort(devices.begin(), devices.end(), NameLess());
  if (std::adjacent_find(devices.begin(), devices.end(), same_name) != devices.end()) {
    drives.fail("two drives have the same device");
  }
}

void read_substitute(const JsonNode& row, const std::wstring& drive, FileTree& tree) {
  row.only({"substitute"});
  const Path folder = read_path(row.member("substitute"));
  if (!tree.volumes.contains(folder.drive)) row.member("substitute").fail("there is no such drive");
  tree.substitutes.emplace(drive, to_text(folder));
}

}  // namespace

void read_drives(const JsonNode& node, State& state) {
  const std::uint32_t next_temporary = state.files.next_temporary;
  FileTree& tree = state.files;
  tree = {};
  tree.next_temporary = next_temporary;
  std::uint32_t serial = default_serial;
  for (const auto& [name, value] : node.object()) {
    const JsonNode row = node.child(name, value);
    if (name.size() != 2 || name[0] < 'A' || name[0] > 'Z' || name[1] != ':') row.fail("a drive is named as \"C:\"");
    if (!row.has("substitute")) read_volume(row, add_volume(tree, std::wstring(name.begin(), name.end()), serial++));
  }
  refuse_double_devices(node, tree);
  for (const auto& [name, value] : node.object()) {
    const JsonNode row = node.child(name, value);
    if (row.has("substitute")) read_substitute(row, std::wstring(name.begin(), name.end()), tree);
  }
}

picojson::value write_drives(const State& state) {
  picojson::object out;
  for (const auto& [name, volume] : state.files.volumes) {
    picojson::object drive;
    drive["serial"] = json_number(volume.serial);
    if (volume.free) drive["free"] = json_number(*volume.free);
    if (!volume.identities) drive["identities"] = picojson::value(false);
    if (!volume.case_query) drive["case_query"] = picojson::value(false);
    if (!volume.device.empty()) drive["device"] = json_text(volume.device);
    out[std::string(name.begin(), name.end())] = picojson::value(drive);
  }
  for (const auto& [name, folder] : state.files.substitutes) {
    picojson::object drive;
    drive["substitute"] = json_text(folder);
    out[std::string(name.begin(), name.end())] = picojson::value(drive);
  }
  return picojson::value(out);
}

}  // namespace machine
