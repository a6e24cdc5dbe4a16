#include "tests/contract/machine_world.h"

#include <span>

#include "platform/machine/file_lookup.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "platform/ports/signatures.h"
#include "tests/contract/scratch.h"
#include "tests/support/user_profiles.h"

namespace contract {

namespace {

class MachineWorld final : public World {
 public:
  MachineWorld() { machine_.add_resource(resource_type, resource_id, {resource_bytes.begin(), resource_bytes.end()}); }

  const ports::System& system() override { return system_; }

  std::wstring folder() override {
    if (folder_.empty()) folder_ = make_scratch_folder(system_);
    return folder_;
  }

  std::wstring key() override { return L"Software\\KyContract"; }

  Child child(std::uint32_t milliseconds, std::uint32_t exit_code) override {
    const std::wstring path = L"C:\\child" + std::to_wstring(++children_) + L".exe";
    write_file(path, {});
    machine_.change([&](machine::State& state) {
      machine::Program program;
      program.image = path;
      program.runs = milliseconds;
      program.exit_code = exit_code;
      state.programs.push_back(std::move(program));
    });
    return {path, L"argument"};
  }

  std::wstring library(Signing signing) override {
    namespace trust = ports::trust;
    static constexpr ports::Result results[] = {trust::trusted,    trust::trusted, trust::no_signature,
                                                trust::bad_digest, trust::expired, trust::untrusted_root};
    const std::wstring path = folder() + L"\\library" + std::to_wstring(++libraries_) + L".dll";
    write_file(path, std::vector<std::uint8_t>{'M', 'Z'});
    if (signing == Signing::none) return path;
    machine_.change([&](machine::State& state) {
      const machine::Path parsed = machine::parse_path(path, L"C:\\").path;
      machine::Signature signature;
      signature.subject = signing == Signing::other ? other_signer_name : signer_name;
      signature.issuer = L"Ky Test Authority";
      signature.serial = {static_cast<std::uint8_t>(signing == Signing::other ? 0x02 : 0x01), 0x9A, 0x00};
      signature.trust = results[static_cast<std::size_t>(signing)];
      state.files.nodes.at(machine::look_up(state.files, parsed, machine::LastLink::itself).node).signature = signature;
    });
    return path;
  }

  std::wstring hive() override {
    std::wstring path = folder() + L"\\hive" + std::to_wstring(++hives_);
    const std::string content = support::hive_content(hive_key);
    write_file(path, std::vector<std::uint8_t>(content.begin(), content.end()));
    return path;
  }

  void add_task(const std::wstring& path) override {
    machine_.change([&](machine::State& state) { state.scheduled_tasks.tasks[path] = {}; });
  }

  std::wstring package_inf() override {
    const std::wstring store = L"C:\\Windows\\System32\\DriverStore\\FileRepository\\ky.inf_amd64_1\\ky.inf";
    machine_.change([&](machine::State& state) {
      machine::FileNode inf;
      inf.store = store;
      machine::add_node(state.files,
                        machine::make_folders(state.files, machine::parse_path(L"C:\\Windows\\INF", L"C:\\").path),
                        L"oem7.inf", std::move(inf));
    });
    return L"oem7.inf";
  }

  bool wine() const override { return false; }
  bool wine_engines() const override { return engines_are_wine(); }

 private:
  void write_file(const std::wstring& path, std::span<const std::uint8_t> bytes) {
    const ports::Handle file =
        system_.files.open(path.c_str(), ports::file_access::generic_write, 0, ports::Disposition::create_new, 0);
    std::uint32_t written = 0;
    EXPECT_TRUE(system_.files.write(file, bytes, written));
    EXPECT_TRUE(system_.waits.close(file));
  }

  machine::Machine machine_;
  std::unique_ptr<ports::Engines> engines_ = ports::make_engines(machine_.errors());
  ports::System system_ = machine_.system(*engines_);
  std::wstring folder_;
  std::uint32_t children_ = 0;
  std::uint32_t libraries_ = 0;
  std::uint32_t hives_ = 0;
};

}  // namespace

std::unique_ptr<World> make_machine_world() {
  return std::make_unique<MachineWorld>();
}

}  // namespace contract
