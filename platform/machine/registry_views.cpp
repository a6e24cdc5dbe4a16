#include "platform/machine/registry_views.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

namespace machine {

namespace {

constexpr std::wstring_view wow_name = L"Wow6432Node";

// Below SOFTWARE. Everything below these is shared too.
constexpr std::array<std::wstring_view, 13> shared_keys = {
    L"Clients",
    L"Policies",
    L"RegisteredApplications",
    L"Microsoft\\SystemCertificates",
    L"Microsoft\\EnterpriseCertificates",
    L"Microsoft\\OLE",
    L"Microsoft\\RPC",
    L"Microsoft\\Windows NT\\CurrentVersion\\Image File Execution Options",
    L"Microsoft\\Windows NT\\CurrentVersion\\ProfileList",
    L"Microsoft\\Windows NT\\CurrentVersion\\Fonts",
    L"Microsoft\\Windows NT\\CurrentVersion\\NetworkCards",
    L"Microsoft\\Windows NT\\CurrentVersion\\Perflib",
    L"Microsoft\\Windows NT\\CurrentVersion\\Time Zones",
};
constexpr std::array<std::wstring_view, 5> split_classes = {L"CLSID", L"Interface", L"DirectShow", L"Media Type",
                                                            L"MediaFoundation"};

using Parts = std::vector<std::wstring>;

[[nodiscard]] bool starts_with(const Parts& parts, std::size_t at, const Parts& start) {
  return parts.size() >= at + start.size() &&
         std::equal(start.begin(), start.end(), parts.begin() + static_cast<std::ptrdiff_t>(at),
                    [](const std::wstring& left, const std::wstring& right) { return same_name(left, right); });
}

[[nodiscard]] bool is_shared(const Parts& parts) {
  return std::any_of(shared_keys.begin(), shared_keys.end(),
                     [&parts](std::wstring_view key) { return starts_with(parts, 1, split_path(key)); });
}

}  // namespace

Parts parts_of_view_32(Parts parts) {
  if (!starts_with(parts, 0, {L"SOFTWARE"})) return parts;
  std::ptrdiff_t at = 1;
  if (starts_with(parts, 1, {L"Classes"})) {
    const bool split = std::any_of(split_classes.begin(), split_classes.end(), [&parts](std::wstring_view name) {
      return starts_with(parts, 2, {std::wstring(name)});
    });
    if (!split) return parts;
    at = 2;
  } else if (starts_with(parts, 1, {std::wstring(wow_name)}) || is_shared(parts)) {
    return parts;
  }
  parts.emplace(parts.begin() + at, wow_name);
  return parts;
}

RegistryWay in_view_32(const RegistryTree& tree, RegistryWay way) {
  Parts whole;
  KeyId key = way.from;
  for (KeyId above = tree.keys.at(key).parent; above != 0; above = tree.keys.at(key).parent) {
    whole.insert(whole.begin(), tree.keys.at(key).name);
    key = above;
  }
  if (key != tree.local_machine) return way;
  std::move(way.parts.begin(), way.parts.end(), std::back_inserter(whole));
  return {key, parts_of_view_32(std::move(whole))};
}

}  // namespace machine
