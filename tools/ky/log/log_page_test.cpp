#include <gtest/gtest.h>
#include <picojson.h>

#include <sstream>

#include "platform/desk/desk.h"
#include "tests/support/log_maker.h"
#include "tests/support/temporary_folder.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/log/log_read.h"
#include "tools/ky/log/page_sink.h"

namespace {

constexpr std::string_view data_begin = R"(<script type="application/json" id="log-data">)";

std::size_t count(std::string_view text, std::string_view part) {
  std::size_t found = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++found;
  return found;
}

std::string_view data_of(std::string_view page) {
  const std::size_t begin = page.find(data_begin) + data_begin.size();
  return page.substr(begin, page.find("</script>", begin) - begin);
}

picojson::value run_of(std::string_view page) {
  picojson::value data;
  EXPECT_EQ(picojson::parse(data, std::string(data_of(page))), "");
  return data.get("runs").get(0);
}

class LogPage : public testing::Test {
 protected:
  int write_page(const std::string& log) {
    workbench::LogReadOptions options{{log}, KY_SOURCE_FOLDER "/keys/development/log-private.pem"};
    options.html = page_path_;
    std::ostringstream out;
    std::ostringstream err;
    const int code = log_tool::log_read(options, out, err);
    EXPECT_EQ(out.str(), "");
    page_ = support::text_of(page_path_);
    return code;
  }
  support::LogMaker maker_;
  support::TemporaryFolder folder_;
  const std::string page_path_ = folder_ / "page.html";
  std::string page_;
};

TEST_F(LogPage, NoMessageLeavesItsElementAndNothingComesFromOutside) {
  const std::string log = folder_.write(
      "s.7.1.v2.bin",
      maker_.header() +
          maker_.record("08:00:00:000", L"=========== Started logging for thread 1 (</script>) on 14.11.2025 =") +
          maker_.record("08:00:00:001", L"</script><script>alert(1)</script><!--<script>]]>&lt;\n") +
          maker_.record("08:00:00:002", L"\"\\\t\x2028\x2029 \xD83D\xDE00\x1B\r\n") +
          maker_.record("08:00:00:003", L"@MODEL@\n@VIEWER@\nhttps://example.test/\n"));
  ASSERT_EQ(write_page(log), 0);
  const std::string_view data = data_of(page_);
  EXPECT_EQ(data.find_first_of("<>&"), std::string_view::npos);
  EXPECT_EQ(data.find("\xE2\x80\xA8"), std::string_view::npos);
  const picojson::value run = run_of(page_);
  EXPECT_EQ(run.get("message").get(1).to_str(), "</script><script>alert(1)</script><!--<script>]]>&lt;");
  EXPECT_NE(run.get("message").get(3).to_str().find("@MODEL@\n@VIEWER@\nhttps"), std::string::npos);
  EXPECT_EQ(run.get("threads").get(0).get(1).to_str(), "</script>");
  EXPECT_EQ(run.get("label").to_str(), "s");
  EXPECT_EQ(run.get("start").get<double>(), 7);

  std::string rest = page_;
  rest.erase(rest.find(data), data.size());
  EXPECT_EQ(count(rest, "<script"), 2U);
  EXPECT_EQ(count(rest, "</script"), 2U);
  EXPECT_EQ(count(rest, "default-src 'none'"), 1U);
  for (const char* outside : {"http:", "https:", "src=", "href=", "@import", "url(", "fetch(", "innerHTML", "eval("}) {
    EXPECT_EQ(count(rest, outside), 0U) << outside;
  }
  for (const char* mark : {"@STYLE@", "@DATA@", "@MODEL@", "@TIMELINE@", "@LIST@", "@ROWS@", "@PANELS@", "@VIEWER@"}) {
    EXPECT_EQ(count(rest, mark), 0U) << mark;
  }
}

TEST_F(LogPage, TheDataTellsThreadsTimesSpansFindingsAndDamage) {
  std::string damaged = maker_.record("08:00:02:000", L"lost\n");
  damaged[damaged.size() - 1] = static_cast<char>(damaged[damaged.size() - 1] ^ 1);
  folder_.write("s.7.4.v2.bin", maker_.header() + maker_.first_record("23:59:59:000", 4) +
                                    maker_.record("23:59:59:500", L"5: DeleteRegKey Begin execute.\n") +
                                    maker_.record("00:00:00:250", L"5: DeleteRegKey 'a' result 5.\n") + damaged +
                                    maker_.record("00:00:00:250", L"5: DeleteRegKey End execute. Next command 6.\n"));
  folder_.write("s.7.9.v2.bin", maker_.header() + maker_.first_record("23:59:59:700", 9));
  EXPECT_EQ(write_page(folder_.path()), 1);
  const picojson::value run = run_of(page_);
  const auto text = [&](const char* name) { return run.get(name).serialize(); };
  EXPECT_EQ(text("threads"), R"([[4,"test"],[9,"test"]])");
  EXPECT_EQ(text("thread"), "[0,0,1,0,0]");
  EXPECT_EQ(text("time"), "[1763164799000,500,200,550,0]");
  EXPECT_EQ(text("commands"), R"(["DeleteRegKey"])");
  EXPECT_EQ(text("spans"), "[[1,4,0,5,6,0,1763164800250,2,5,0]]");
  EXPECT_EQ(text("severity"), "[[3,2]]");
  EXPECT_EQ(text("code"), "[[3,5,0]]");
  EXPECT_EQ(run.get("problems").get(0).get(0).to_str(), "record");
  EXPECT_EQ(run.get("problems").get(0).get(1).to_str(), "s.7.4.v2.bin");
}

TEST_F(LogPage, WithoutADateTimesGoOnOverMidnight) {
  EXPECT_EQ(write_page(folder_.write("s.7.1.v2.bin", maker_.header() + maker_.record("23:59:59:000", L"a\n") +
                                                         maker_.record("23:59:58:000", L"set back\n") +
                                                         maker_.record("00:00:01:000", L"b\n"))),
            0);
  const picojson::value run = run_of(page_);
  EXPECT_EQ(run.get("dated").serialize() + run.get("time").serialize(), "false[86399000,-1000,3000]");
}

TEST_F(LogPage, BeyondItsLimitsThePageHoldsTheNewestRecordsAndSaysSo) {
  for (const log_tool::PageLimits limits : {log_tool::PageLimits{3, 1000}, log_tool::PageLimits{1000, 12}}) {
    std::ostringstream err;
    log_tool::PageSink sink(err, limits);
    const std::string file = "f";
    for (const char* run : {"a.1", "b.2"}) {
      sink.begin_run(run);
      for (int i = 0; i < 20; ++i) sink.record({file, 0, 1, {}, 0, std::to_wstring(10 + i)});
    }
    picojson::value data;
    EXPECT_EQ(picojson::parse(data, std::string(data_of(sink.page()))), "");
    EXPECT_EQ(data.get("runs").get(0).get("leftOut").get<double>(), 20);
    EXPECT_EQ(data.get("runs").get(1).get("leftOut").get<double>(), 17);
    EXPECT_EQ(data.get("runs").get(1).get("message").serialize(), R"(["27","28","29"])");
    EXPECT_EQ(err.str(), "the page holds the newest 3 records; 37 older ones were left out\n");
  }
}

TEST_F(LogPage, ItIsWrittenWholeOrNotAtAllAndNeverOverALog) {
  const std::string log = folder_.write("s.7.1.v2.bin", maker_.header() + maker_.first_record("08:00:00:000", 1));
  for (const std::string& out : {log, folder_ / "s.8.1.bin", folder_ / "absent/page.html"}) {
    workbench::LogReadOptions options{{log}, KY_SOURCE_FOLDER "/keys/development/log-private.pem"};
    options.html = out;
    std::ostringstream ignored;
    EXPECT_THROW((void)log_tool::log_read(options, ignored, ignored), workbench::BadInput) << out;
    EXPECT_EQ(desk::exists(out), out == log);
  }
}

}  // namespace
