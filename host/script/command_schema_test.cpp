#include "host/script/command_schema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/commands/own_commands.h"
#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "tests/support/bare_machine.h"

namespace {

using host::AttributeSchema;
using host::CommandSchema;

TEST(CommandSchemas, TheHostsOwnCommandsAreTheOnesDescribedAsSuch) {
  std::vector<std::string_view> described;
  for (const CommandSchema& each : host::all_commands()) {
    if (each.owner == host::Owner::host) described.push_back(each.name);
  }
  std::vector<std::string_view> made;
  for (const host::NamedFactory& each : host::own_commands()) made.push_back(each.stem);
  std::sort(made.begin(), made.end());
  EXPECT_EQ(described, made);
}

TEST(CommandSchemas, TheKeysPutByTheHostAreTheOnesThatStandBeforeARun) {
  support::BareMachine world;
  host::TableFactories library{ky::library::factories()};
  host::Session session{world.system, library};
  ASSERT_EQ(session.start(host::built_in_script_key()), "");
  std::vector<std::string> standing;
  for (const host::StoredKey& key : session.store().keys()) standing.push_back(key.name);
  const auto named = host::keys_put_by_host();
  EXPECT_EQ(standing, std::vector<std::string>(named.begin(), named.end()));
}

TEST(CommandSchemas, AttributesSpeakOfAttributesThatAreThere) {
  for (const CommandSchema& command : host::all_commands()) {
    const auto known = [&](std::string_view name) {
      return std::any_of(command.attributes.begin(), command.attributes.end(),
                         [&](const AttributeSchema& each) { return each.name == name; });
    };
    for (const AttributeSchema& each : command.attributes) {
      for (const std::string_view name : {each.integer_with, each.text_with, each.name_with, each.needs}) {
        EXPECT_TRUE(name.empty() || known(name)) << command.name << ' ' << each.name << ": " << name;
      }
      const bool names = each.form >= host::Form::integer_name;
      EXPECT_EQ(names, each.access != host::Access::none) << command.name << ' ' << each.name;
      EXPECT_TRUE(each.expanded || !each.keeps_expansion) << command.name << ' ' << each.name;
      EXPECT_NE(each.meaning, "") << command.name << ' ' << each.name;
    }
    for (const host::TargetSchema& target : command.targets) {
      const bool is_key = target.kind == host::TargetKind::ifeo_keys;
      for (const std::string_view name : {is_key ? "" : target.name, target.place, target.root}) {
        EXPECT_TRUE(name.empty() || known(name)) << command.name << ' ' << name;
      }
    }
    for (const std::string_view name : command.one_of) EXPECT_TRUE(known(name)) << command.name << ' ' << name;
  }
}

TEST(CommandSchemas, AnAttributeIsFoundByTheNameThatAnElementGivesIt) {
  const struct {
    const char *command, *attribute, *schema;
    std::int32_t number;
  } rows[] = {
      {"Jump", "strValue", "strValue", 0},
      {"Jump", "execCondition", "execCondition", 0},
      {"Jump", "id", nullptr, 0},
      {"Jump", "strvalue", nullptr, 0},
      {"LoadFilesFromResources", "resourceID12", "resourceID", 12},
      {"LoadFilesFromResources", "resourceID", nullptr, 0},
      {"LoadFilesFromResources", "resourceID0", nullptr, 0},
      {"LoadFilesFromResources", "resourceID01", nullptr, 0},
      {"LoadFilesFromResources", "resourceID1x", nullptr, 0},
      {"LoadFilesFromResources", "resourceID99999999999", nullptr, 0},
  };
  for (const auto& row : rows) {
    const host::FoundAttribute found = host::find_attribute(*host::schema_of(row.command), row.attribute);
    EXPECT_STREQ(found.schema == nullptr ? nullptr : found.schema->name.data(), row.schema) << row.attribute;
    EXPECT_EQ(found.number, row.number) << row.attribute;
  }
  EXPECT_EQ(host::schema_of("Jum"), nullptr);
  EXPECT_EQ(host::schema_of(""), nullptr);
  EXPECT_EQ(host::schema_of("Zzz"), nullptr);
}

TEST(CommandSchemas, TheFirstThingThatIsMissingIsNamed) {
  const auto missing = [](const char* command, const std::vector<std::wstring>& attributes) {
    return host::missing_attribute(*host::schema_of(command), attributes);
  };
  EXPECT_EQ(missing("Jump", {L"target", L"conditio", L"conditions"}), "lacks the attribute \"condition\"");
  EXPECT_EQ(missing("Jump", {L"target", L"condition"}), "");
  EXPECT_EQ(missing("SetProgress", {L"index"}), "lacks both attributes \"value\" and \"max\"");
  EXPECT_EQ(missing("SetProgress", {L"max"}), "");
}

}  // namespace
