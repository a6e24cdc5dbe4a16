#include "tools/ky/keys/new_keys.h"

#include "host/script/script_key.h"
#include "platform/desk/desk.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/keys/pem.h"

namespace keys {

namespace {

struct KeyFile {
  std::string path;
  std::string text;
  desk::Access access = desk::Access::owner_only;
};

void require(const std::string& failure) {
  if (!failure.empty()) throw workbench::BadInput(failure);
}

std::vector<KeyFile> name_files(const std::string& folder) {
  std::vector<KeyFile> files(3);
  files[0].path = desk::join(folder, "script.key");
  files[1].path = desk::join(folder, "log-private.pem");
  files[2].path = desk::join(folder, "log-public.pem");
  for (const KeyFile& file : files) {
    if (desk::exists(file.path)) throw workbench::BadInput(file.path + ": exists, and a key is never replaced");
  }
  return files;
}

void fill_files(std::vector<KeyFile>& files, ports::KeyMaker& key_maker) {
  host::ScriptKey script_key{};
  ports::RsaPair log_keys;
  if (!key_maker.random(script_key) || !key_maker.rsa_pair(log_key_bits, log_keys)) {
    throw workbench::BadInput("the system makes no keys");
  }
  files[0].text = host::format_script_key(script_key);
  files[1].text = format_pem("PRIVATE KEY", log_keys.private_key);
  files[2].text = format_pem("PUBLIC KEY", log_keys.public_key);
  files[2].access = desk::Access::everybody;
}

/// Removes what was made unless all of it was.
class Rollback {
 public:
  Rollback() = default;
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;
  ~Rollback() {
    for (auto path = made_.rbegin(); path != made_.rend(); ++path) (void)desk::remove(*path);
  }
  void note(const std::string& path) { made_.push_back(path); }
  void keep() { made_.clear(); }

 private:
  std::vector<std::string> made_;
};

}  // namespace

std::vector<std::string> make_new_keys(const std::string& folder, ports::KeyMaker& key_maker) {
  std::vector<KeyFile> files = name_files(folder);
  fill_files(files, key_maker);
  Rollback rollback;
  const bool folder_is_new = !desk::exists(folder);
  require(desk::make_folders(folder));
  if (folder_is_new) rollback.note(folder);
  std::vector<std::string> paths;
  for (const KeyFile& file : files) {
    require(desk::write_file(file.path, file.text, file.access));
    rollback.note(file.path);
    paths.push_back(file.path);
  }
  rollback.keep();
  return paths;
}

}  // namespace keys
