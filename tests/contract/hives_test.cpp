#include "platform/ports/registry.h"
#include "platform/ports/tokens.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::RegistryKey;
namespace access = ports::registry_access;
namespace code = ports::code;

class Hives : public Contract {
 protected:
  ~Hives() override {
    // Where a test failed, or Wine left a key.
    if (on_) static_cast<void>(unload());
    for (auto state = before_.rbegin(); state != before_.rend(); ++state) {
      EXPECT_TRUE(system().tokens.adjust(token_, *state, nullptr));
    }
    if (token_ != ports::Handle::null) {
      EXPECT_TRUE(system().waits.close(token_));
    }
  }

  /// Both privileges, until the test ends.
  void switch_on() {
    const std::uint32_t rights = ports::token_access::adjust_privileges | ports::token_access::query;
    ASSERT_TRUE(system().tokens.open_own(rights, token_)) << last_error();
    for (const wchar_t* name : {L"SeRestorePrivilege", L"SeBackupPrivilege"}) {
      ports::PrivilegeState state{1, ports::PrivilegeValue::null, ports::privilege_enabled};
      ASSERT_TRUE(system().tokens.privilege_value(name, state.privilege)) << last_error();
      ports::PrivilegeState before;
      ASSERT_TRUE(system().tokens.adjust(token_, state, &before));
      EXPECT_EQ(last_error(), code::success);
      before_.push_back(before);
    }
    on_ = true;
  }

  ports::Registry& registry() { return system().registry; }
  [[nodiscard]] std::wstring name(const wchar_t* below = L"") {
    const std::wstring key = world().key();
    return key.substr(key.rfind(L'\\') + 1) + L"Hive" + below;
  }
  ports::ErrorCode load(const std::wstring& file) {
    return registry().load_hive(RegistryKey::users, name().c_str(), file.c_str());
  }
  ports::ErrorCode unload() { return registry().unload_hive(RegistryKey::users, name().c_str()); }
  ports::ErrorCode open(const std::wstring& path, RegistryKey& key) {
    return registry().open(RegistryKey::users, path.c_str(), 0, access::read, key);
  }
  /// Opens, closes, and tells the code.
  ports::ErrorCode try_open(const std::wstring& path) {
    RegistryKey key = RegistryKey::null;
    const ports::ErrorCode result = open(path, key);
    if (result == 0) {
      EXPECT_EQ(registry().close(key), 0U);
    }
    return result;
  }

 private:
  ports::Handle token_ = ports::Handle::null;
  std::vector<ports::PrivilegeState> before_;
  bool on_ = false;
};

TEST_P(Hives, AHiveIsMountedAndUnmountedWithThePrivilegesAlone) {
  const std::wstring file = world().hive();
  EXPECT_EQ(load(file), code::privilege_not_held);
  EXPECT_EQ(unload(), code::privilege_not_held);
  switch_on();
  EXPECT_EQ(unload(), code::file_not_found);
  ASSERT_EQ(load(file), 0U);
  EXPECT_EQ(try_open(name(L"\\") + hive_key), 0U);
  EXPECT_EQ(load(world().hive()), code::already_exists);
  EXPECT_EQ(unload(), 0U);
  EXPECT_EQ(try_open(name()), code::file_not_found);
}

TEST_P(Hives, WhatIsNoHiveOrHeldIsNotMounted) {
  const std::wstring held = world().hive();
  const std::wstring text = world().folder() + L"\\text";
  switch_on();
  EXPECT_EQ(load(world().folder() + L"\\absent"), code::file_not_found);
  EXPECT_EQ(load(world().folder() + L"\\absent\\absent"), code::path_not_found);

  const ports::Handle holder =
      system().files.open(held.c_str(), ports::file_access::generic_read, 0, ports::Disposition::open_existing, 0);
  ASSERT_NE(holder, ports::Handle::invalid) << last_error();
  EXPECT_EQ(load(held), code::sharing_violation);
  EXPECT_TRUE(system().waits.close(holder));

  make_file(text, std::string(64, 'x'));
  const ports::ErrorCode result = load(text);
  EXPECT_NE(result, 0U);
  expect_but_for_wine("a file that is no hive", result == code::bad_database);
  expect_but_for_wine("a file that is no hive", try_open(name()) == code::file_not_found);
}

TEST_P(Hives, AMountedFileIsTheSystemsAlone) {
  const std::wstring file = world().hive();
  switch_on();
  ASSERT_EQ(load(file), 0U);
  const ports::Handle handle = system().files.open(file.c_str(), ports::file_access::generic_read,
                                                   ports::file_share::all, ports::Disposition::open_existing, 0);
  expect_but_for_wine("the file of a mounted hive",
                      handle == ports::Handle::invalid && last_error() == code::sharing_violation);
  if (handle != ports::Handle::invalid) {
    EXPECT_TRUE(system().waits.close(handle));
  }
  const std::wstring other = name(L"2");
  const ports::ErrorCode again = registry().load_hive(RegistryKey::users, other.c_str(), file.c_str());
  expect_but_for_wine("the file of a mounted hive", again == code::sharing_violation);
  if (again == 0) {
    EXPECT_EQ(registry().unload_hive(RegistryKey::users, other.c_str()), 0U);
  }
  EXPECT_EQ(unload(), 0U);
}

TEST_P(Hives, AnOpenKeyKeepsAHiveMounted) {
  const std::wstring file = world().hive();
  switch_on();
  ASSERT_EQ(load(file), 0U);
  RegistryKey key = RegistryKey::null;
  ASSERT_EQ(open(name(L"\\Software"), key), 0U);
  const ports::ErrorCode result = unload();
  expect_but_for_wine("an open key of a hive", result == code::access_denied);
  EXPECT_EQ(registry().close(key), 0U);
  EXPECT_EQ(unload(), result == 0 ? code::file_not_found : code::success);
}

TEST_P(Hives, WhatChangesWhileOneIsMountedIsInItsFile) {
  const std::wstring file = world().hive();
  switch_on();
  ASSERT_EQ(load(file), 0U);
  RegistryKey key = RegistryKey::null;
  bool created = false;
  ASSERT_EQ(registry().create(RegistryKey::users, name(L"\\New").c_str(), 0, access::read, key, created), 0U);
  EXPECT_EQ(registry().close(key), 0U);
  EXPECT_EQ(registry().remove_tree(RegistryKey::users, name(L"\\Software").c_str()), 0U);
  ASSERT_EQ(unload(), 0U);
  ASSERT_EQ(load(file), 0U);
  expect_but_for_wine("changes of a hive",
                      try_open(name(L"\\New")) == 0 && try_open(name(L"\\Software")) == code::file_not_found);
  EXPECT_EQ(unload(), 0U);
}

KY_CONTRACT(Hives);

}  // namespace

}  // namespace contract
