#include "installer/desktop/commands/data/getstringfromxmlcommand.h"

#include <iostream>

#include "platform/faults/faulty_system.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"
#include "tests/support/command_fixture.h"

namespace ky {
namespace {

namespace code = ports::code;

class GetStringFromXml : public CommandFixture {
 protected:
  GetStringFromXml() {
    put("Name", L"two");
    put("Doc",
        L"<r><a n='1'>one</a><two v=' [Name] '> [Name]\\<b>bold</b> [Unset]</two><blank> </blank><empty v=''/>\n"
        L"<pre>C:\\[Name]</pre></r>");
    put("Bad", L"<r>");
  }

  void make_document(const wchar_t* path, std::string_view bytes) {
    make_file(path, ports::file_attribute::normal, bytes);
  }

  /// Takes the output away: what a key held is never released by the command.
  std::wstring take(const std::string& name) {
    const wchar_t* const text = get_text(name);
    std::wstring copy = text == nullptr ? L"(none)" : text;
    ky::Release(ky::FromStored<ky::CString*>(session.store().get("String_" + name)));
    session.store().put("String_" + name, 0);
    return copy;
  }
};

TEST_F(GetStringFromXml, StoresTheExpandedText) {
  make_document(L"C:\\two.xml", "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><r>\xC3\xA9</r>");
  put("InstallItemsXml", L"C:\\[Name].xml");
  const struct {
    Attributes attributes;
    const wchar_t* text;
  } rows[] = {
      {{{"xmlVar", "Doc"}, {"xpath", "/r/a"}}, L"one"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/a"}, {"attribute", "n"}}, L"1"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/a/@n"}}, L"1"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/[Name]"}, {"attribute", "v"}}, L" two "},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/pre"}}, L"C:\\two"},
      // An undefined variable keeps the text, the path and the xpath as they are.
      {{{"xmlVar", "Doc"}, {"xpath", "/r/[Name]"}}, L"[Name]\\bold [Unset]"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/*[last()]"}}, L"C:\\two"},
      // The variable comes before the file.
      {{{"xmlVar", "Doc"}, {"file", "C:\\two.xml"}, {"xpath", "/r/a"}}, L"one"},
      {{{"file", "C:\\[Name].xml"}, {"xpath", "/r"}}, L"\xE9"},
      {{{"xpath", "/r"}}, L"\xE9"},
  };
  put("ReturnCode", 7);
  for (const auto& row : rows) {
    Attributes attributes = row.attributes;
    attributes.emplace_back("var", "Out");
    attributes.emplace_back("defaultValue", "unused");
    log.clear();
    run("GetStringFromXml", attributes);
    EXPECT_EQ(log,
              (std::vector<std::wstring>{L"5: GetStringFromXml : String_Out=\"" + std::wstring(row.text) + L"\".\n",
                                         L"5: GetStringFromXml End execute. Next command 6.\n"}));
    EXPECT_EQ(take("Out"), row.text);
  }
  EXPECT_EQ(get_int("ReturnCode"), 7) << "success does not touch it";
}

TEST_F(GetStringFromXml, FailuresAreToldByCodeAndResult) {
  make_document(L"C:\\bad.xml", "<r>");
  const std::int32_t untouched = 7;
  const struct {
    Attributes attributes;
    std::uint32_t result;
    std::int32_t return_code;
    const wchar_t* told;  // the xpath that the log says was not read
  } rows[] = {
      {{{"xpath", "/r"}}, 1359, untouched, nullptr},
      {{{"xpath", "/r"}, {"file", "[Empty]"}}, 1359, untouched, nullptr},
      {{{"xmlVar", "Bad"}, {"xpath", "/r"}}, 1168, code::nothing, nullptr},
      {{{"file", "C:\\bad.xml"}, {"xpath", "/r"}}, 1168, code::nothing, nullptr},
      {{{"file", "C:\\missing.xml"}, {"xpath", "/r"}}, 1168, code::nothing, nullptr},
      {{{"file", "C:\\[Unset].xml"}, {"xpath", "/r"}}, 1168, code::nothing, nullptr},
      {{{"file", "C:\\Windows"}, {"xpath", "/r"}}, 1168, code::nothing, nullptr},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/[Name]/none"}}, 0, code::nothing, L"/r/two/none"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/a"}, {"attribute", "none"}}, 0, code::nothing, L"/r/a"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/a/text()"}, {"attribute", "n"}}, 0, code::nothing, L"/r/a/text()"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/[Unset]"}}, 0, code::fail, L"/r/[Unset]"},
      {{{"xmlVar", "Doc"}}, 0, code::fail, L""},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/blank"}}, 0, 0, L"/r/blank"},
      {{{"xmlVar", "Doc"}, {"xpath", "/r/empty"}, {"attribute", "v"}}, 0, 0, L"/r/empty"},
  };
  put("Empty", L"");
  put("Out", L"old");
  for (const auto& row : rows) {
    for (const bool has_default : {false, true}) {
      Attributes attributes = row.attributes;
      attributes.emplace_back("var", "Out");
      if (has_default) attributes.emplace_back("defaultValue", "[Name] it is");
      put("ReturnCode", untouched);
      log.clear();
      const Loaded loaded = load("GetStringFromXml", attributes);
      EXPECT_EQ(loaded.result, 0u);
      EXPECT_EQ(loaded.command->Execute(0, 0), row.result);
      EXPECT_EQ(get_int("ReturnCode"), row.return_code);
      EXPECT_STREQ(get_text("Out"), L"old");
      EXPECT_FALSE(loaded.command->GuardHeld());
      std::vector<std::wstring> expected;
      if (row.told != nullptr) {
        expected.push_back(L"5: GetStringFromXml : Error reading " + std::wstring(row.told) + L".\n");
        if (has_default) {
          expected.emplace_back(L"5: GetStringFromXml : Try to set default value\n");
          expected.emplace_back(L"5: GetStringFromXml : set default value: String_Out=\"two it is\".\n");
        }
      }
      expected.emplace_back(L"5: GetStringFromXml End execute. Next command 6.\n");
      EXPECT_EQ(log, expected);
    }
  }
}

TEST_F(GetStringFromXml, FailingCallsAreToldByTheirCode) {
  make_document(L"C:\\d.xml", "<r v='x'>y</r>");
  using faults::Operation;
  const struct {
    Operation operation;
    ports::Result code;
    bool of_attribute;
    std::uint32_t result;
    std::int32_t return_code;
  } rows[] = {
      {Operation::com_initialize, code::fail, false, 0, 7},
      {Operation::xml_create_document, code::class_not_registered, false, 1168, code::class_not_registered},
      {Operation::files_open, static_cast<ports::Result>(code::access_denied), false, 1168, code::nothing},
      {Operation::files_read, static_cast<ports::Result>(code::read_fault), false, 1168, code::nothing},
      {Operation::xml_load_bytes, code::no_memory, false, 1168, code::no_memory},
      {Operation::xml_select_single_node, code::no_memory, false, 0, code::no_memory},
      {Operation::xml_text, code::no_memory, false, 0, code::no_memory},
      {Operation::xml_attributes, code::no_memory, true, 0, code::no_memory},
      {Operation::xml_named_item, code::no_memory, true, 0, code::no_memory},
      {Operation::xml_text, code::nothing, true, 0, code::nothing},
  };
  for (const auto& row : rows) {
    const Loaded loaded = load(
        "GetStringFromXml",
        {{"file", "C:\\d.xml"}, {"xpath", "/r"}, {"var", "Out"}, {"attribute", row.of_attribute ? "v" : "unnamed"}});
    const Loaded plain = load("GetStringFromXml", {{"file", "C:\\d.xml"}, {"xpath", "/r"}, {"var", "Out"}});
    const std::uint64_t failed = faulty.failed(row.operation);
    faulty.fail(row.operation, faulty.calls(row.operation) + 1, false, static_cast<ports::ErrorCode>(row.code));
    put("ReturnCode", 7);
    EXPECT_EQ((row.of_attribute ? loaded : plain).command->Execute(0, 0), row.result);
    EXPECT_EQ(get_int("ReturnCode"), row.return_code) << faults::contract(row.operation).name;
    EXPECT_EQ(faulty.failed(row.operation), failed + 1) << faults::contract(row.operation).name;
    EXPECT_EQ(take("Out"), row.return_code == 7 ? L"y" : L"(none)");
  }
}

TEST_F(GetStringFromXml, TheXPathKeepsItsFirstExpansion) {
  const Loaded loaded = load("GetStringFromXml", {{"xmlVar", "Doc"}, {"xpath", "/r/[Tag]"}, {"var", "Out"}});
  EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
  EXPECT_EQ(get_int("ReturnCode"), code::fail) << "it does not parse while its variable is undefined";
  put("Tag", L"a");
  EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
  EXPECT_EQ(take("Out"), L"one");
  put("Tag", L"pre");
  EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
  EXPECT_EQ(take("Out"), L"one");
}

TEST_F(GetStringFromXml, AnUnsetDocumentStopsTheProcess) {
  make_document(L"C:\\d.xml", "<r>y</r>");
  const Loaded loaded =
      load("GetStringFromXml", {{"xmlVar", "Unset"}, {"file", "C:\\d.xml"}, {"xpath", "/r"}, {"var", "Out"}});
  machine::Options options;
  options.on_stop = [](const ports::StopReason& reason) {
    std::cerr << std::string(reason.text.begin(), reason.text.end());
  };
  EXPECT_DEATH(
      {
        machine::Machine telling(std::move(options));
        const ports::System own = telling.system(*engines);
        ports::bind(own);
        static_cast<void>(loaded.command->Execute(0, 0));
      },
      "assertion: source");
}

}  // namespace
}  // namespace ky
