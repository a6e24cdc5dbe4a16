#include "tests/scenario/samples.h"

#include <gtest/gtest.h>

#include <picojson.h>

#include <cstdlib>

#include "platform/desk/desk.h"
#include "tests/scenario/programs.h"

namespace scenario {

namespace {

std::string source_path(const std::string& path) {
  return desk_path(std::string(KY_SOURCE_FOLDER) + "/" + path);
}

int rehearse(const std::string& machine, const std::string& script, const std::string& out) {
  std::vector<std::string> arguments = {"rehearse", "--machine", machine, "--out", out};
  if (!script.empty()) {
    arguments.emplace_back("--script");
    arguments.push_back(source_path("samples/scripts/" + script + ".xml"));
  }
  return run_program(desk_path(KY_PROGRAM), arguments);
}

class Samples : public testing::TestWithParam<Sample> {};

// One golden file for both builds: what they give is the same to the byte. KY_UPDATE_GOLDEN=1 writes it anew.
TEST_P(Samples, RehearseToTheirGoldenResult) {
  const Sample& sample = GetParam();
  const std::string out = output_folder(sample.name);
  EXPECT_EQ(rehearse(source_path("samples/machines/" + sample.machine + ".json"), sample.script, out),
            sample.exit_code);
  const std::string result = read_text(desk::join(out, "result.json"));
  const std::string golden = source_path("tests/golden/results/" + sample.name + ".json");
  if (std::getenv("KY_UPDATE_GOLDEN") != nullptr) {
    ASSERT_EQ(desk::write_file(golden, result), "");
  }
  EXPECT_EQ(result, read_text(golden));
}

// What is still there because it waits for the next start is booked anew, as Windows does.
TEST_P(Samples, RunTwiceChangeNothingTheSecondTime) {
  const Sample& sample = GetParam();
  const std::string first = output_folder(sample.name + "-first");
  const std::string second = output_folder(sample.name + "-second");
  static_cast<void>(rehearse(source_path("samples/machines/" + sample.machine + ".json"), sample.script, first));
  static_cast<void>(rehearse(desk::join(first, "machine.json"), sample.script, second));
  picojson::value result;
  ASSERT_EQ(picojson::parse(result, read_text(desk::join(second, "result.json"))), "");
  for (const picojson::value& change : result.get("changes").get<picojson::array>()) {
    const bool booked_again = sample.exit_code == 3 && change.get("kind").to_str() == "delayed-move";
    EXPECT_TRUE(booked_again) << change.serialize();
  }
}

TEST(Rehearsal, AnEndlessScriptStopsAtTheStepLimit) {
  const std::string out = output_folder("endless");
  EXPECT_EQ(run_program(desk_path(KY_PROGRAM),
                        {"rehearse", "--machine", source_path("samples/machines/workshop.json"), "--script",
                         source_path("tests/scenario/scripts/endless-loop.xml"), "--max-steps", "1000", "--out", out}),
            1);
  const std::string result = read_text(desk::join(out, "result.json"));
  EXPECT_NE(result.find("step"), std::string::npos) << result;
  EXPECT_FALSE(read_text(desk::join(out, "machine.json")).empty());
}

INSTANTIATE_TEST_SUITE_P(Each, Samples, testing::ValuesIn(samples()), [](const testing::TestParamInfo<Sample>& sample) {
  std::string name = sample.param.name;
  for (char& c : name) c = c == '-' ? '_' : c;
  return name;
});

}  // namespace
}  // namespace scenario
