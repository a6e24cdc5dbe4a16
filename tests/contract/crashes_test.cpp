#include "platform/ports/crashes.h"

#include "tests/contract/world.h"

namespace contract {

namespace {

class Crashes : public Contract {};

TEST_P(Crashes, ADumpIsAMinidump) {
  const std::wstring path = world().folder() + L"\\a.dmp";
  const ports::Handle file = system().files.open(path.c_str(), 0x1F01FF, 0, ports::Disposition::create_always, 0);
  ASSERT_NE(file, ports::Handle::invalid) << last_error();
  EXPECT_TRUE(system().crashes.write_dump(file, ports::DumpKind::normal, nullptr));
  EXPECT_TRUE(system().waits.close(file));
  const ports::Handle again = system().files.open(path.c_str(), ports::file_access::generic_read,
                                                  ports::file_share::all, ports::Disposition::open_existing, 0);
  std::uint8_t head[8] = {};
  std::uint32_t got = 0;
  EXPECT_TRUE(system().files.read(again, head, got));
  EXPECT_EQ(std::string(head, head + 4), "MDMP");
  EXPECT_EQ(std::string(head + 4, head + 6), "\x93\xA7");
  EXPECT_TRUE(system().waits.close(again));
}

KY_CONTRACT(Crashes);

}  // namespace

}  // namespace contract
