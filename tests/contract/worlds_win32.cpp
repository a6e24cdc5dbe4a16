#include <windows.h>

#include "platform/ports/build.h"
#include "platform/ports/modules.h"
#include "platform/ports/processes.h"
#include "tests/contract/machine_world.h"
#include "tests/contract/scratch.h"
#include "tests/contract/signed_files.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

class RealWorld final : public World {
 public:
  RealWorld() = default;
  ~RealWorld() override {
    if (!folder_.empty()) remove_folder_tree(system_, folder_);
    remove_key_tree(system_, key());
  }
  RealWorld(const RealWorld&) = delete;
  RealWorld& operator=(const RealWorld&) = delete;

  const ports::System& system() override { return system_; }

  std::wstring folder() override {
    if (folder_.empty()) folder_ = make_scratch_folder(system_);
    return folder_;
  }

  // Test programs run side by side.
  std::wstring key() override { return L"Software\\KyContract" + std::to_wstring(system_.processes.current_id()); }

  Child child(std::uint32_t milliseconds, std::uint32_t exit_code) override {
    const std::wstring own = system_.modules.file_name(system_.modules.main());
    return {own.substr(0, own.rfind(L'\\') + 1) + L"ky_contract_child.exe",
            std::to_wstring(milliseconds) + L" " + std::to_wstring(exit_code)};
  }

  std::wstring library(Signing signing) override {
    static constexpr const wchar_t* names[] = {L"own", L"other", L"none", L"tampered", L"expired", L"stranger"};
    trust_test_authority();
    const std::wstring made = signed_file(names[static_cast<std::size_t>(signing)] + std::wstring(L".dll"));
    const std::wstring path = folder() + L"\\library" + std::to_wstring(++libraries_) + L".dll";
    EXPECT_TRUE(CopyFileW(made.c_str(), path.c_str(), TRUE)) << made.c_str();
    return path;
  }

  // Wine starts its shell with the first thread that asks for the desktop, and only then.
  void start_shell() override { ASSERT_NE(GetDesktopWindow(), nullptr); }

  bool wine() const override { return engines_are_wine(); }
  bool wine_engines() const override { return engines_are_wine(); }

 private:
  const ports::System& system_ = *ports::real_system(ports::Module::null);
  std::wstring folder_;
  std::uint32_t libraries_ = 0;
};

}  // namespace

bool engines_are_wine() {
  ports::Modules& modules = ports::real_system(ports::Module::null)->modules;
  const ports::Module ntdll = modules.load(L"ntdll.dll", ports::load_flag::search_system);
  return modules.procedure(ntdll, "wine_get_version") != nullptr;
}

std::vector<WorldMaker> worlds() {
  return {{"Machine", make_machine_world},
          {"Real", [] { return std::unique_ptr<World>(std::make_unique<RealWorld>()); }}};
}

}  // namespace contract
