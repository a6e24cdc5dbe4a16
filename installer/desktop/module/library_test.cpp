#include "installer/desktop/module/library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

namespace ky {
namespace {

TEST(Library, FactoriesStandInOrderAndMakeCommandsWithTheirDefaults) {
  const auto table = library::factories();
  EXPECT_TRUE(std::is_sorted(table.begin(), table.end(), [](auto& a, auto& b) { return a.stem < b.stem; }));
  for (const NamedFactory& factory : table) {
    CInstallCommand* const command = factory.make();
    EXPECT_EQ(command->GetIndex(), -1) << factory.stem;
    EXPECT_EQ(command->next, -1) << factory.stem;
    EXPECT_FALSE(command->executed) << factory.stem;
    EXPECT_EQ(command->errVar, nullptr) << factory.stem;
    EXPECT_EQ(command->execCondition, nullptr) << factory.stem;
    EXPECT_FALSE(command->GuardHeld()) << factory.stem;
    Release(command);
  }
  Release(nullptr);
}

TEST(Library, FieldsStandWhereHostsReadThem) {
  CInstallCommand* const command = GetCNopCommand();
  const auto at = [command](const void* field) {
    return static_cast<const char*>(field) - reinterpret_cast<const char*>(command);
  };
  EXPECT_EQ(at(&command->index), 8);
  EXPECT_EQ(at(&command->next), 12);
  EXPECT_EQ(at(&command->executed), 16);
  EXPECT_EQ(at(&command->errVar), 24);
  EXPECT_EQ(at(&command->execCondition), 32);
  Release(command);
}

}  // namespace
}  // namespace ky
