#include "installer/utils/base/fs/same_file.h"

#include "tests/support/bound_world.h"

namespace base::fs {
namespace {

constexpr wchar_t ours[] = L"C:\\Suite\\one.exe";

class SameFiles : public support::BoundWorld {
 protected:
  SameFiles() {
    world.file(ours).file(L"C:\\Other\\one.exe").file(L"C:\\Suite\\two.exe").junction(L"C:\\Linkd", L"C:\\Suite");
    machine::add_volume(world.state.files, L"D:", 0x1234);
    world.file(L"D:\\Suite\\one.exe");
    const machine::NodeId folder = world.node(ours).places.front().folder;
    const machine::NodeId node = world.state.files.nodes.at(folder).children.at(L"one.exe");
    machine::add_name(world.state.files, node, {folder, L"tie.exe"});
  }
};

TEST_F(SameFiles, OnlyOneFileUnderAPathOfTheSameLengthPasses) {
  const struct {
    const wchar_t* path;
    bool same;
  } rows[] = {{ours, true},
              {L"c:\\SUITE\\ONE.EXE", true},
              {L"C:\\Suite\\tie.exe", true},  // another name of the file
              {L"C:\\Linkd\\one.exe", true},  // through a link
              {L"C:\\Suite\\\\one.exe", false},
              {L"C:\\Suite\\.\\one.exe", false},
              {L"C:\\Suite\\one.exe.", false},
              {L"C:\\Suite\\one.exe ", false},
              {L"C:\\Other\\one.exe", false},  // a copy
              {L"C:\\Suite\\two.exe", false},
              {L"D:\\Suite\\one.exe", false},
              {L"C:\\Suite\\abs.exe", false},
              {L"", false},
              {nullptr, false}};
  for (const bool identities : {true, false}) {
    for (auto& [drive, volume] : world.state.files.volumes) volume.identities = identities;
    start();
    for (const auto& row : rows) {
      EXPECT_EQ(SameFile(ours, row.path), row.same) << &row - rows << identities;
      EXPECT_EQ(SameFile(row.path, ours), row.same) << &row - rows << identities;
    }
  }
}

TEST_F(SameFiles, TheIndexStandsInOnlyWhereThereIsNoIdentity) {
  const struct {
    Operation fails;
    std::uint64_t call;
    ports::ErrorCode fault;
    bool same;
  } rows[] = {
      {Operation::files_open, 1, ports::code::access_denied, false},
      {Operation::files_open, 2, ports::code::access_denied, false},
      {Operation::files_identity, 1, ports::code::access_denied, false},
      {Operation::files_identity, 2, ports::code::invalid_handle, false},
  };
  for (const auto& row : rows) {
    start();
    faulty->fail(row.fails, row.call, false, row.fault);
    EXPECT_EQ(SameFile(ours, ours), row.same) << &row - rows;
  }
  for (const ports::ErrorCode code : {ports::code::not_supported, ports::code::invalid_parameter}) {
    start();
    faulty->fail(Operation::files_identity, 1, true, code);
    EXPECT_TRUE(SameFile(ours, L"C:\\Suite\\tie.exe"));
    EXPECT_FALSE(SameFile(ours, L"D:\\Suite\\one.exe"));
    faulty->fail(Operation::files_information, faulty->calls(Operation::files_information) + 2, false,
                 ports::code::access_denied);
    EXPECT_FALSE(SameFile(ours, ours));
  }
}

}  // namespace
}  // namespace base::fs
