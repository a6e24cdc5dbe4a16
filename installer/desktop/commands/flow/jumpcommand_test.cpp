#include "installer/desktop/commands/flow/jumpcommand.h"

#include "tests/support/command_fixture.h"

namespace ky {
namespace {

using Jump = CommandFixture;

TEST_F(Jump, EveryTestHasItsOutcomeAndItsLine) {
  put("Three", 3);
  put("Big", -1);
  put("Text", L"Abc");
  put("Other", L"Abc");
  const struct {
    Attributes attributes;
    std::int32_t next;
    const wchar_t* line;
  } rows[] = {
      {{{"condition", "Three"}}, 90, L"5: Jump: 3('Three') != 0. True => 90.\n"},
      {{{"condition", "None"}}, 6, L"5: Jump: 0('None') != 0. False => 6.\n"},
      {{{"condition", "None"}, {"next", "8"}}, 8, L"5: Jump: 0('None') != 0. False => 8.\n"},
      {{{"condition", "None"}, {"next", "-8"}}, 6, L"5: Jump: 0('None') != 0. False => 6.\n"},
      {{{"condition", "Three"}, {"value", "3"}}, 90, L"5: Jump: 3('Three') == 3. True => 90.\n"},
      {{{"condition", "Three"}, {"value", "0x4"}}, 6, L"5: Jump: 3('Three') == 4. False => 6.\n"},
      {{{"condition", "None"}, {"value", "0"}}, 90, L"5: Jump: 0('None') == 0. True => 90.\n"},
      {{{"condition", "Big"}, {"value", "-1"}}, 90, L"5: Jump: -1('Big') == -1. True => 90.\n"},
      {{{"condition", "Three"}, {"value", "Three"}, {"expValue", "1"}}, 90, L"5: Jump: 3('Three') == 3. True => 90.\n"},
      {{{"condition", "Three"}, {"value", "7"}, {"expValue", "0"}}, 6, L"5: Jump: 3('Three') == 7. False => 6.\n"},
      {{{"condition", "Text"}, {"strValue", "Abc"}}, 90, L"5: Jump: ('Abc') == ('Abc'). True => 90.\n"},
      {{{"condition", "Text"}, {"strValue", "[Other]"}}, 90, L"5: Jump: ('Abc') == ('Abc'). True => 90.\n"},
      {{{"condition", "Text"}, {"strValue", "aBC"}}, 6, L"5: Jump: ('Abc') == ('aBC'). False => 6.\n"},
      {{{"condition", "Text"}, {"strValue", "aBC"}, {"compareCase", "0"}},
       90,
       L"5: Jump: ('Abc') == ('aBC'). True => 90.\n"},
      {{{"condition", "None"}, {"strValue", "Abc"}}, 6, L"5: Jump: ('(null)') == ('Abc'). False => 6.\n"},
      {{{"condition", "None"}, {"strValue", "[None]"}}, 6, L"5: Jump: ('(null)') == ('(null)'). False => 6.\n"},
      // An integer wins over a text and is 0 then.
      {{{"condition", "Three"}, {"value", "0"}, {"strValue", "x"}}, 90, L"5: Jump: 0('Three') == 0. True => 90.\n"},
  };
  for (const auto& row : rows) {
    log.clear();
    Attributes attributes = row.attributes;
    attributes.emplace_back("target", "90");
    const auto command = run("Jump", attributes);
    EXPECT_EQ(command->GetNextIndex(), row.next) << base::strings::to_utf8(row.line);
    EXPECT_EQ(log.at(1), row.line);
  }
}

TEST_F(Jump, AMissingConditionOrTargetEndsTheLoad) {
  EXPECT_EQ(load("Jump", {{"target", "1"}}).result, 1u);
  EXPECT_EQ(load("Jump", {{"condition", "a"}}).result, 1u);
}

TEST_F(Jump, TheExpandedTextIsKeptForTheNextRunAndTheNamedIntegerIsReadAnew) {
  put("Text", L"one");
  put("Expected", L"one");
  put("Number", 1);
  put("Limit", 1);
  const auto texts = run("Jump", {{"condition", "Text"}, {"strValue", "[Expected]"}, {"target", "90"}});
  put("Expected", L"two");
  put("Text", L"two");
  texts->Execute(0, 0);
  EXPECT_EQ(texts->GetNextIndex(), 6);

  const auto numbers = run("Jump", {{"condition", "Number"}, {"value", "Limit"}, {"expValue", "1"}, {"target", "90"}});
  EXPECT_EQ(numbers->GetNextIndex(), 90);
  put("Limit", 2);
  numbers->Execute(0, 0);
  EXPECT_EQ(numbers->GetNextIndex(), 6);
}

TEST_F(Jump, AnUndefinedVariableToCompareWithStopsTheProcess) {
  put("Text", L"Abc");
  const Loaded loaded = load("Jump", {{"condition", "Text"}, {"strValue", "[None]"}, {"target", "1"}});
  EXPECT_EXIT(
      static_cast<void>(loaded.command->Execute(0, 0)), [](int status) { return status != 0; }, "");
}

}  // namespace
}  // namespace ky
