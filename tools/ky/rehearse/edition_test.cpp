#include "resources/edition.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "host/script/script_key.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "tools/ky/rehearse/script_run.h"

namespace rehearsal {
namespace {

std::vector<std::uint8_t> bytes_of(const std::string& text) {
  return {text.begin(), text.end()};
}

Outcome run_edition(const std::string& configuration) {
  machine::Machine machine;
  machine.add_resource(edition::document_type, edition::configuration_id, bytes_of(configuration));
  const std::unique_ptr<ports::Engines> engines = ports::make_engines(machine.errors());
  const ports::System system = machine.system(*engines);
  ScriptRun run(system);
  EXPECT_TRUE(run.prepare(edition::script(), host::built_in_script_key(), {}).empty());
  return run.run({});
}

/// The document without the element of that name which stands there as number `position`; empty where there is none.
std::string without(const std::string& name, int position) {
  std::string document(edition::configuration());
  std::size_t begin = document.find("<" + name + ">");
  while (position-- > 0 && begin != std::string::npos) begin = document.find("<" + name + ">", begin + 1);
  if (begin == std::string::npos) return {};
  const std::string end = "</" + name + ">";
  return document.erase(begin, document.find(end, begin) + end.size() - begin);
}

TEST(Edition, RemovesNothingWhereAValueThatItNeedsIsMissing) {
  const struct {
    std::string name;
    int first, last;
  } needed[] = {{"ManufacturerName", 0, 0},
                {"InstallPath", 0, 4},
                {"RegistryKey", 0, 5},
                {"ProductName", 0, 4},
                {"IfeoProtectedExecutables", 0, 2}};
  for (const auto& row : needed) {
    for (int position = row.first; position <= row.last; ++position) {
      const std::string document = without(row.name, position);
      ASSERT_FALSE(document.empty()) << row.name << position;
      const Outcome outcome = run_edition(document);
      EXPECT_EQ(outcome.return_code, 1359) << row.name << position;
      EXPECT_EQ(outcome.deletions.size(), 0U) << row.name << position;
    }
  }
}

TEST(Edition, DoesWithoutTheValuesThatNotEveryEditionHas) {
  for (const char* const name : {"PaygateShortcutName", "RegistryKeyWoW64"}) {
    EXPECT_EQ(run_edition(without(name, 0)).return_code, 0) << name;
  }
}

}  // namespace
}  // namespace rehearsal
