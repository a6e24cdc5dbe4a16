#include "platform/faults/gate.h"

#include <gtest/gtest.h>

#include <set>
#include <string_view>
#include <vector>

namespace faults {
namespace {

std::vector<bool> failures(Gate& gate, Operation operation, int calls) {
  std::vector<bool> failed;
  for (int call = 0; call < calls; ++call) failed.push_back(gate.pass(operation).has_value());
  return failed;
}

TEST(Gate, ThePlannedCallOfTheOperationFailsAndNoOther) {
  Gate gate;
  gate.fail(Operation::files_open, 2, false, ports::code::access_denied);
  EXPECT_EQ(failures(gate, Operation::files_read, 3), std::vector<bool>({false, false, false}));
  EXPECT_EQ(failures(gate, Operation::files_open, 4), std::vector<bool>({false, true, false, false}));
  EXPECT_EQ(gate.calls(Operation::files_open), 4u);
  EXPECT_EQ(gate.failed(Operation::files_open), 1u);
}

TEST(Gate, FailingForGoodGoesOn) {
  Gate gate;
  gate.fail(Operation::registry_set, 2, true, ports::code::access_denied);
  EXPECT_EQ(failures(gate, Operation::registry_set, 3), std::vector<bool>({false, true, true}));
  EXPECT_EQ(gate.pass(Operation::registry_set), ports::code::access_denied);
}

TEST(Contracts, EachOperationHasItsOwnNameAndCodesThatFail) {
  std::set<std::string_view> names;
  for (const Contract& row : contracts()) {
    EXPECT_EQ(&contract(row.operation), &row) << row.name;
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
    ASSERT_FALSE(row.codes.empty()) << row.name;
    for (const ports::ErrorCode code : row.codes) EXPECT_NE(code, ports::code::success) << row.name;
  }
}

}  // namespace
}  // namespace faults
