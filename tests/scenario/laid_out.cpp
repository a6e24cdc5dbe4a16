#include "tests/scenario/laid_out.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "installer/utils/base/strings/case_fold.h"
#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/threads.h"

namespace scenario {

namespace {

namespace attribute = ports::file_attribute;

std::wstring lower(std::wstring text) {
  for (wchar_t& c : text) c = base::strings::to_lower(c);
  return text;
}

void each_row(const ports::System& world, const std::wstring& folder,
              const std::function<void(const ports::FolderRow&)>& action) {
  ports::FolderRow row;
  const ports::Handle search = world.files.find_first((folder + L"\\*").c_str(), row);
  if (search == ports::Handle::invalid) return;
  do {
    if (row.name != L"." && row.name != L"..") action(row);
  } while (world.files.find_next(search, row));
  world.files.find_close(search);
}

/// Creates the folder and those above it.
void make_folders(const ports::System& world, const std::wstring& folder) {
  for (std::size_t at = folder.find(L'\\', 3);; at = folder.find(L'\\', at + 1)) {
    static_cast<void>(world.files.create_folder(folder.substr(0, at).c_str()));
    if (at == std::wstring::npos) return;
  }
}

class OpenKey {
 public:
  OpenKey(const ports::System& world, ports::RegistryKey parent, const std::wstring& name) : registry_(world.registry) {
    open_ = registry_.open(parent, name.c_str(), ports::registry_option::open_link, ports::registry_access::read,
                           key_) == ports::code::success;
  }
  ~OpenKey() {
    if (open_) registry_.close(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  [[nodiscard]] bool open() const { return open_; }
  [[nodiscard]] ports::RegistryKey key() const { return key_; }

  [[nodiscard]] std::vector<std::wstring> subkeys() const {
    return names([this](std::uint32_t i, std::wstring& name) { return registry_.subkey(key_, i, name); });
  }
  [[nodiscard]] std::vector<std::wstring> values() const {
    return names([this](std::uint32_t i, std::wstring& name) { return registry_.value_name(key_, i, name); });
  }

 private:
  template <class Next>
  static std::vector<std::wstring> names(Next next) {
    std::vector<std::wstring> all;
    for (std::wstring name; next(static_cast<std::uint32_t>(all.size()), name) == ports::code::success;) {
      all.push_back(name);
    }
    return all;
  }

  ports::Registry& registry_;
  ports::RegistryKey key_ = ports::RegistryKey::null;
  bool open_ = false;
};

void list_key_into(const ports::System& world, const OpenKey& key, const std::wstring& name,
                   std::set<std::wstring>& out) {
  if (!key.open()) return;
  out.insert(lower(name) + L"\\");
  for (const std::wstring& value : key.values()) out.insert(lower(name + L":" + value));
  for (const std::wstring& subkey : key.subkeys()) {
    list_key_into(world, OpenKey(world, key.key(), subkey), name + L"\\" + subkey, out);
  }
}

void copy_key_into(const ports::System& from, const OpenKey& source, const ports::System& to, ports::RegistryKey root,
                   const std::wstring& subkey) {
  ports::RegistryKey made = ports::RegistryKey::null;
  bool created = false;
  ASSERT_EQ(to.registry.create(root, subkey.c_str(), 0, ports::registry_access::write, made, created), 0u);
  for (const std::wstring& name : source.values()) {
    ports::RegistryValue value;
    ASSERT_EQ(from.registry.query(source.key(), name.c_str(), value), 0u);
    ASSERT_EQ(to.registry.set(made, name.c_str(), value), 0u);
  }
  to.registry.close(made);
  for (const std::wstring& name : source.subkeys()) {
    copy_key_into(from, OpenKey(from, source.key(), name), to, root, subkey + L"\\" + name);
  }
}

}  // namespace

std::set<std::wstring> list_folder(const ports::System& world, const std::wstring& folder) {
  std::set<std::wstring> out;
  if (!world.files.exists(folder.c_str())) return out;
  out.insert(lower(folder) + L"\\");
  each_row(world, folder, [&](const ports::FolderRow& row) {
    const std::wstring path = folder + L"\\" + row.name;
    const bool enter = (row.attributes & (attribute::directory | attribute::reparse_point)) == attribute::directory;
    if (enter) {
      out.merge(list_folder(world, path));
    } else {
      out.insert(lower(path));
    }
  });
  return out;
}

std::set<std::wstring> list_key(const ports::System& world, const KeyRoot& key) {
  std::set<std::wstring> out;
  list_key_into(world, OpenKey(world, key.root, key.subkey), key.name + L"\\" + key.subkey, out);
  return out;
}

void copy_folder(const ports::System& from, const ports::System& to, const std::wstring& folder) {
  make_folders(to, folder);
  each_row(from, folder, [&](const ports::FolderRow& row) {
    if ((row.attributes & attribute::reparse_point) != 0) return;
    const std::wstring path = folder + L"\\" + row.name;
    if ((row.attributes & attribute::directory) != 0) return copy_folder(from, to, path);
    copy_file(from, path, to, path);
    EXPECT_TRUE(to.files.set_attributes(path.c_str(), row.attributes));
  });
}

void copy_file(const ports::System& from, const std::wstring& source, const ports::System& to,
               const std::wstring& target) {
  const ports::Handle in = from.files.open(source.c_str(), ports::file_access::generic_read, ports::file_share::all,
                                           ports::Disposition::open_existing, 0);
  ASSERT_NE(in, ports::Handle::invalid);
  static_cast<void>(to.files.set_attributes(target.c_str(), attribute::normal));
  const ports::Handle out = to.files.open(target.c_str(), ports::file_access::generic_write, ports::file_share::none,
                                          ports::Disposition::create_always, 0);
  ASSERT_NE(out, ports::Handle::invalid);
  std::array<std::uint8_t, 65536> block;
  std::uint32_t got = 0;
  while (from.files.read(in, block, got) && got > 0) {
    std::uint32_t written = 0;
    ASSERT_TRUE(to.files.write(out, std::span(block).first(got), written));
  }
  to.waits.close(out);
  from.waits.close(in);
}

void copy_key(const ports::System& from, const ports::System& to, const KeyRoot& key) {
  const OpenKey source(from, key.root, key.subkey);
  if (source.open()) copy_key_into(from, source, to, key.root, key.subkey);
}

}  // namespace scenario
