#include "installer/desktop/commands/data/loadfilesfromresourcescommand.h"

#include "installer/utils/base/resources/resource_text.h"
#include "tests/support/command_fixture.h"

namespace ky {
namespace {

class LoadFilesFromResources : public CommandFixture {
 protected:
  void add(std::uint16_t id, std::string_view text) { world.add_resource(L"XML", id, {text.begin(), text.end()}); }
};

TEST_F(LoadFilesFromResources, CopiesDocumentsAndStopsAtTheFirstThatIsNone) {
  add(1, "\xEF\xBB\xBF<a>\xC3\xA9</a>\r\n\0junk");
  add(2, "no brackets");
  add(3, "<c/>");
  const auto command = run("LoadFilesFromResources", {{"resourceID1", "0x1"},
                                                      {"outResource1", "One"},
                                                      {"resourceID2", "2"},
                                                      {"outResource2", "Two"},
                                                      {"resourceID4", "3"},
                                                      {"outResource4", "Four"},
                                                      {"error", "Err"},
                                                      {"next", "9"}});
  EXPECT_STREQ(get_text("One"), L"<a>\u00E9</a>");
  EXPECT_EQ(get_text("Two"), nullptr);
  EXPECT_EQ(get_text("Four"), nullptr);
  EXPECT_EQ(get_int("Err"), 1359);
  EXPECT_EQ(log, (std::vector<std::wstring>{L"5: LoadFilesFromResources Begin execute.\n",
                                            L"5: resource='1' loaded in 'One'\n", L"5: not a valid xml in resources\n",
                                            L"5: LoadFilesFromResources End execute. Next command 9\n"}));
}

TEST_F(LoadFilesFromResources, NumbersMayHaveGapsAndHalfAPairIsNone) {
  add(1, "<a/>");
  put("Err", 7);
  run("LoadFilesFromResources", {{"resourceID2", "1"}, {"outResource2", "Two"}, {"error", "Err"}});
  EXPECT_STREQ(get_text("Two"), L"<a/>");
  run("LoadFilesFromResources", {{"resourceID1", "1"}, {"error", "Err"}});
  run("LoadFilesFromResources", {});
  EXPECT_EQ(get_int("Err"), 7);
}

TEST(ResourceText, IsWhatStandsBetweenTheOuterBrackets) {
  const struct {
    const char* bytes;
    const char* part;  // null for none
  } rows[] = {{"x<a>y", "<a>"}, {"<", nullptr}, {"><", nullptr}, {"", nullptr}, {"<>", "<>"}, {"a<b", nullptr}};
  for (const auto& row : rows) {
    const auto part = res::document_part(row.bytes);
    EXPECT_EQ(part.has_value(), row.part != nullptr) << row.bytes;
    if (part) {
      EXPECT_EQ(*part, row.part);
    }
  }
}

}  // namespace
}  // namespace ky
