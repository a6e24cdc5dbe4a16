#include "tests/contract/scratch.h"

#include <vector>

#include "platform/ports/files.h"
#include "platform/ports/registry.h"
#include "platform/ports/threads.h"

namespace contract {

std::wstring make_scratch_folder(const ports::System& system) {
  wchar_t temp[300] = {};
  wchar_t name[260] = {};
  if (system.files.temp_folder(temp) == 0 || system.files.temp_file(temp, L"ky", 0, name) == 0) return {};
  system.files.remove(name);
  return system.files.create_folder(name) ? name : std::wstring();
}

void remove_folder_tree(const ports::System& system, const std::wstring& folder) {
  ports::FolderRow row;
  const ports::Handle search = system.files.find_first((folder + L"\\*").c_str(), row);
  if (search != ports::Handle::invalid) {
    do {
      if (row.name == L"." || row.name == L"..") continue;
      const std::wstring path = folder + L"\\" + row.name;
      system.files.set_attributes(path.c_str(), ports::file_attribute::normal);
      if ((row.attributes & ports::file_attribute::directory) == 0) {
        system.files.remove(path.c_str());
      } else if ((row.attributes & ports::file_attribute::reparse_point) == 0) {
        remove_folder_tree(system, path);
      }
    } while (system.files.find_next(search, row));
    system.files.find_close(search);
  }
  system.files.remove_folder(folder.c_str());
}

void remove_key_tree(const ports::System& system, const std::wstring& key) {
  ports::RegistryKey opened = ports::RegistryKey::null;
  if (system.registry.open(ports::RegistryKey::local_machine, key.c_str(), ports::registry_option::open_link,
                           ports::registry_access::read | ports::registry_access::erase, opened) != 0) {
    return;
  }
  std::vector<std::wstring> names;
  std::wstring name;
  while (system.registry.subkey(opened, static_cast<std::uint32_t>(names.size()), name) == 0) names.push_back(name);
  for (const std::wstring& below : names) remove_key_tree(system, key + L"\\" + below);
  static_cast<void>(system.registry.remove(opened));
  system.registry.close(opened);
}

}  // namespace contract
