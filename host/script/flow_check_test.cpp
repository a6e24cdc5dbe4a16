#include "host/script/flow_check.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using host::FlowPoint;

std::string faults_of(const std::vector<FlowPoint>& points) {
  std::string text;
  for (const host::FlowFault& fault : host::check_flow(points)) {
    text += std::to_string(fault.point) + ' ' + fault.attribute + ": " + fault.reason + '\n';
  }
  return text;
}

TEST(Flow, EveryWayThatLeadsToACommandOrBehindTheLastOneIsGood) {
  EXPECT_EQ(faults_of({}), "");
  EXPECT_EQ(faults_of({{0}, {1, 5}, {5, -1, 0}, {6, 0}}), "");
  EXPECT_EQ(faults_of({{0, 3}, {1, -1, 3}, {2}}), "") << "behind the last one the script ends";
  EXPECT_EQ(faults_of({{10, 2}, {2, 10}}), "") << "the order in the document is free";
}

TEST(Flow, EveryWayThatLeadsNowhereIsAFault) {
  EXPECT_EQ(faults_of({{0, 2}}), "0 next: no command has index 2\n") << "the end lies directly behind the last one";
  EXPECT_EQ(faults_of({{0, -1, 3}}), "0 target: no command has index 3\n");
  EXPECT_EQ(faults_of({{0, -1, -1}}), "0 target: no command has index -1\n");
  EXPECT_EQ(faults_of({{0}, {2}}), "0 : goes on to the index that follows it, and no command has index 1\n");
}

TEST(Flow, AnIndexIsTakenOnceAndInRange) {
  EXPECT_EQ(faults_of({{0}, {0}}), "1 index: element 1 has index 0 already\n");
  EXPECT_EQ(faults_of({{-3, 0}, {0}}), "0 index: is out of range\n");
  EXPECT_EQ(faults_of({{std::numeric_limits<std::int32_t>::max()}}), "0 index: is out of range\n");
}

}  // namespace
