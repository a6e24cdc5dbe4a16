#include "installer/utils/base/xml/xml_reader.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/faults/faulty_system.h"
#include "platform/ports/system.h"
#include "tests/support/bare_machine.h"
#include "tests/support/refusal_of.h"

namespace base::xml {
namespace {

class XmlReader : public ::testing::Test {
 protected:
  XmlReader() { ports::bind(faulty.system()); }
  ~XmlReader() override { ports::unbind(); }

  support::BareMachine desk;
  faults::FaultySystem faulty{desk.system};
};

TEST_F(XmlReader, RaisesOrTellsTheSameCode) {
  const xml_reader<true> text(L"<r><a v='1'>one</a></r>");
  const xml_base_reader& reader = text;
  EXPECT_EQ(reader.get_value(L"/r/a"), L"one");
  EXPECT_EQ(reader.get_value(L"/r/a/@v"), L"1");
  EXPECT_EQ(reader.get_attribute(L"/r/a", L"v"), L"1");
  EXPECT_FALSE(reader.get_node(L"/r/a").empty());
  using Telling = std::function<bool(std::error_code&)>;  // true where it gave nothing
  const auto fail = static_cast<int>(ports::code::fail);
  const auto pointer = static_cast<int>(ports::code::pointer);
  const struct {
    std::function<void()> raise;
    Telling tell;
    const char* what;
    int code;
  } rows[] = {
      {[&] { (void)reader.get_value(L"/r/b"); }, [&](auto& code) { return reader.get_value(L"/r/b", code).empty(); },
       "get_value has failed!", 1},
      {[&] { (void)reader.get_value(L"["); }, [&](auto& code) { return reader.get_value(L"[", code).empty(); },
       "get_value has failed!", fail},
      {[&] { (void)reader.get_attribute(L"/r/b", L"v"); },
       [&](auto& code) { return reader.get_attribute(L"/r/b", L"v", code).empty(); }, "get_attribute has failed!", 1},
      {[&] { (void)reader.get_attribute(L"/r/a", L"w"); },
       [&](auto& code) { return reader.get_attribute(L"/r/a", L"w", code).empty(); }, "get_attribute has failed!", 1},
      {[&] { (void)reader.get_node(L"["); }, [&](auto& code) { return reader.get_node(L"[", code).empty(); },
       "selectSingleNode has failed", fail},
      {[&] { (void)reader.get_node(L"/r/b"); }, [&](auto& code) { return reader.get_node(L"/r/b", code).empty(); },
       "get_nodeType has failed", pointer},
      {[&] { (void)reader.get_node(L"/r/a/@v"); },
       [&](auto& code) { return reader.get_node(L"/r/a/@v", code).empty(); }, "node type mismatch", fail},
  };
  for (const auto& row : rows) {
    std::error_code code;
    EXPECT_TRUE(row.tell(code)) << row.what;
    EXPECT_EQ(code.value(), row.code) << row.what;
    try {
      row.raise();
      ADD_FAILURE() << row.what;
    } catch (const std::system_error& error) {
      EXPECT_NE(std::string(error.what()).find(row.what), std::string::npos) << error.what();
      EXPECT_EQ(error.code(), code);
    }
    EXPECT_FALSE(reader.get_value(L"/r/a", code).empty());
    EXPECT_FALSE(code) << "success clears the code";
  }
}

TEST_F(XmlReader, LeavesComInWhateverWayItEnds) {
  const auto make_text = [](const wchar_t* text) { return [text] { xml_reader<true>{text}; }; };
  EXPECT_EQ(support::refusal_of(make_text(L"<r/>")), "none");
  EXPECT_NE(support::refusal_of(make_text(L"<r>")).find("::load xml has failed!"), std::string::npos);
  EXPECT_NE(support::refusal_of([] { xml_reader<false>{L"C:\\missing.xml"}; }).find("::load xml has failed!"),
            std::string::npos);
  faulty.fail(faults::Operation::xml_create_document, 1, true,
              static_cast<ports::ErrorCode>(ports::code::class_not_registered));
  EXPECT_NE(support::refusal_of(make_text(L"<r/>")).find("::CreateInstance has failed!"), std::string::npos);
  // The first entrance of a thread is told apart from further ones.
  EXPECT_EQ(desk.system.com.initialize(ports::ComModel::apartment_threaded), ports::code::ok);
  desk.system.com.uninitialize();
}

}  // namespace
}  // namespace base::xml
