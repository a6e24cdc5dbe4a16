#include "platform/ports/modules.h"

#include "platform/ports/environment.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

namespace code = ports::code;

class ModulesAndResources : public Contract {
 protected:
  ports::Modules& modules() { return system().modules; }
  ports::Resources& resources() { return system().resources; }
};

TEST_P(ModulesAndResources, AResourceGivesItsBytes) {
  const ports::Module program = system().own_module;
  const ports::ResourcePlace place = resources().find(program, resource_id, resource_type);
  ASSERT_NE(place, ports::ResourcePlace::null) << last_error();
  const ports::ResourceData data = resources().load(program, place);
  ASSERT_NE(data, ports::ResourceData::null) << last_error();
  const std::uint8_t* bytes = resources().lock(data);
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(std::string(bytes, bytes + resources().size(program, place)), resource_bytes);
}

TEST_P(ModulesAndResources, AMissingResourceSaysWhatIsMissing) {
  const auto find = [&](std::uint16_t id, const wchar_t* type) {
    return code_of(resources().find(system().own_module, id, type) != ports::ResourcePlace::null);
  };
  EXPECT_EQ(find(resource_id + 1, resource_type), code::resource_name_not_found);
  EXPECT_EQ(find(resource_id, L"NONE"), code::resource_type_not_found);
}

TEST_P(ModulesAndResources, WhatCannotBeLoadedSaysWhy) {
  const std::wstring missing = world().folder() + L"\\missing.dll";
  EXPECT_EQ(code_of(modules().load(missing.c_str(), 0) != ports::Module::null), code::module_not_found);
  EXPECT_EQ(code_of(modules().procedure(modules().main(), "NoSuchExport") != nullptr), code::procedure_not_found);
}

TEST_P(ModulesAndResources, TheProgramKnowsItsPlace) {
  const std::wstring name = modules().file_name(modules().main());
  EXPECT_NE(name.rfind(L'\\'), std::wstring::npos) << "a full path";
  EXPECT_FALSE(system().environment.command_line().empty());
  for (const ports::KnownFolder which : {ports::KnownFolder::system, ports::KnownFolder::windows,
                                         ports::KnownFolder::program_files, ports::KnownFolder::common_app_data}) {
    const std::wstring folder = system().environment.folder(which);
    ASSERT_FALSE(folder.empty());
    EXPECT_NE(folder.back(), L'\\');
    EXPECT_TRUE(system().files.exists(folder.c_str()));
  }
  expect_but_for_wine("all users' profile",
                      !system().environment.folder(ports::KnownFolder::all_users_profile).empty());
}

TEST_P(ModulesAndResources, ADriveIsToldAsItsDevice) {
  wchar_t device[300] = {};
  const std::uint32_t count = system().environment.dos_device(L"C:", device);
  const std::wstring current = device;
  EXPECT_EQ(current.rfind(L"\\Device\\", 0), 0U);
  ASSERT_GE(count, current.size() + 2);
  EXPECT_EQ(device[count - 1], L'\0');
  EXPECT_EQ(device[count - 2], L'\0');
  EXPECT_EQ(code_of(system().environment.dos_device(L"q:", device) != 0), code::file_not_found);
  EXPECT_EQ(code_of(system().environment.dos_device(L"C:", {device, 4}) != 0), code::insufficient_buffer);
}

KY_CONTRACT(ModulesAndResources);

}  // namespace

}  // namespace contract
