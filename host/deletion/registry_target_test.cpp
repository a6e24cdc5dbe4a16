#include "host/deletion/registry_target.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using host::decide_registry_key;
using host::decide_registry_value;
using ports::RegistryKey;
using Parts = std::vector<std::wstring>;

TEST(RegistryTarget, ASubkeyIsTakenApart) {
  const host::RegistryTarget key = decide_registry_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Tavrine\\");
  EXPECT_EQ(key.refusal, nullptr);
  EXPECT_EQ(key.root, RegistryKey::local_machine);
  EXPECT_EQ(key.parts, (Parts{L"SOFTWARE", L"Tavrine"}));
  EXPECT_FALSE(key.each_user);

  const host::RegistryTarget users = decide_registry_key(L"HKEY_USERS", L"*\\Software\\Tavrine");
  EXPECT_TRUE(users.each_user);
  EXPECT_EQ(users.parts, (Parts{L"Software", L"Tavrine"}));
  EXPECT_EQ(decide_registry_value(L"HKEY_CLASSES_ROOT", L"*\\shell").parts, (Parts{L"*", L"shell"}))
      << "elsewhere \"*\" is a key";
}

TEST(RegistryTarget, WhatWouldBeADisasterIsRefused) {
  const struct {
    const wchar_t *base, *subkey;
  } rows[] = {
      {L"HKEY_LOCAL_MACHINE", L""},
      {L"HKEY_LOCAL_MACHINE", L"\\"},
      {L"HKEY_LOCAL_MACHINE", L"SOFTWARE"},
      {L"HKEY_LOCAL_MACHINE", L"software\\microsoft\\"},
      {L"HKEY_LOCAL_MACHINE", L"SYSTEM\\CurrentControlSet\\Services\\"},
      {L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\\\Tavrine"},
      {L"HKEY_CURRENT_USER", L"Software"},
      {L"HKEY_USERS", L"S-1-5-18"},
      {L"HKEY_USERS", L"S-1-5-18\\Software"},
      {L"HKEY_USERS", L"S-1-5-18\\Software\\Microsoft"},
      {L"HKEY_USERS", L"*\\"},
      {L"HKEY_USERS", L"*\\Software"},
      {L"HKEY_USERS", L"S-1-5-21-7__ky_setup__\\Software\\Policies"},
      {L"HKEY_USERS", L"S-1-5-21-7_Classes\\CLSID"},
      {L"HKEY_USERS", L"S-1-5-21-7_Classes"},
      {L"HKEY_CLASSES_ROOT", L"CLSID"},
      {L"HKEY_CLASSES_ROOT", L"Wow6432Node\\CLSID"},
      {L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Classes\\clsid"},
      {L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Wow6432Node"},
      {L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\WOW6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall"},
      {L"HKEY_LOCAL_MACHINE", L"SYSTEM\\ControlSet001\\Services"},
      {L"hkey_local_machine", L"SOFTWARE\\Tavrine"},
      {L"", L"SOFTWARE\\Tavrine"},
  };
  for (const auto& row : rows) {
    EXPECT_NE(decide_registry_key(row.base, row.subkey).refusal, nullptr)
        << std::string(row.subkey, row.subkey + std::wcslen(row.subkey));
  }
}

TEST(RegistryTarget, AValueMayGoFromAGreatBranch) {
  const wchar_t run[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
  EXPECT_NE(decide_registry_key(L"HKEY_LOCAL_MACHINE", run).refusal, nullptr);
  EXPECT_EQ(decide_registry_value(L"HKEY_LOCAL_MACHINE", run).refusal, nullptr);
  EXPECT_EQ(decide_registry_key(L"HKEY_CLASSES_ROOT", L".tavrine").refusal, nullptr);
  EXPECT_EQ(decide_registry_key(L"HKEY_USERS", L"S-1-5-21-7_Classes\\.tavrine").refusal, nullptr);
  EXPECT_EQ(decide_registry_key(L"HKEY_LOCAL_MACHINE", L"SOFTWARE\\Wow6432Node\\Tavrine").refusal, nullptr);
}

TEST(RegistryTarget, OnlyTheSystemsOwnControlSetIsOpenedThroughItsLink) {
  const Parts service = {L"system", L"CURRENTCONTROLSET", L"Services"};
  EXPECT_EQ(host::open_options(RegistryKey::local_machine, service, 1), 0U);
  const std::uint32_t as_itself = ports::registry_option::open_link;
  EXPECT_EQ(host::open_options(RegistryKey::local_machine, service, 0), as_itself);
  EXPECT_EQ(host::open_options(RegistryKey::local_machine, service, 2), as_itself);
  EXPECT_EQ(host::open_options(RegistryKey::current_user, service, 1), as_itself);
  EXPECT_EQ(host::open_options(RegistryKey::local_machine, Parts{L"SYSTEM", L"CurrentControlSet"}, 1), as_itself)
      << "the link is never a target";
}

TEST(RegistryTarget, AUsersClassesAreNotAUser) {
  EXPECT_TRUE(host::is_user_key(L"S-1-5-21-1"));
  EXPECT_TRUE(host::is_user_key(L".DEFAULT"));
  EXPECT_FALSE(host::is_user_key(L"S-1-5-21-1_classes"));
}

}  // namespace
