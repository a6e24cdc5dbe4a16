#include "platform/faults/faulty_system.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "ky/decrypter.h"
#include "platform/ports/cng.h"
#include "platform/ports/environment.h"
#include "platform/ports/files.h"
#include "platform/ports/log_streams.h"
#include "platform/ports/registry.h"
#include "platform/ports/text.h"
#include "platform/ports/threads.h"
#include "platform/ports/xml.h"
#include "tests/support/bare_machine.h"

namespace faults {
namespace {

class FaultySystemTest : public ::testing::Test {
 protected:
  support::BareMachine desk;
  const ports::System& world = desk.system;
  FaultySystem faulty{world};
  const ports::System& system = faulty.system();
};

TEST_F(FaultySystemTest, AFailedCallDoesNothingInsideAndTheNextOneGoesThrough) {
  faulty.fail(Operation::files_create_folder, 1, false, ports::code::disk_full);
  EXPECT_FALSE(system.files.create_folder(L"C:\\a"));
  EXPECT_EQ(system.errors.last(), ports::code::disk_full);
  EXPECT_FALSE(world.files.exists(L"C:\\a"));
  EXPECT_TRUE(system.files.create_folder(L"C:\\a"));
  EXPECT_TRUE(world.files.exists(L"C:\\a"));
  EXPECT_EQ(faulty.calls(Operation::files_create_folder), 2u);
}

TEST_F(FaultySystemTest, EachWayOfAnsweringTellsTheFault) {
  wchar_t wide[8] = {};
  const ports::Handle event = world.waits.create_event(true, true, nullptr);
  ports::RegistryKey key = ports::RegistryKey::null;
  auto* document = reinterpret_cast<ports::XmlNode*>(1);
  std::wstring reason;
  const struct {
    Operation operation;
    std::function<bool()> failed;
    bool sets_last_error;
  } cases[] = {
      {Operation::files_open,
       [&] { return system.files.open(L"C:\\", 0, 0, ports::Disposition::open_existing, 0) == ports::Handle::invalid; },
       true},
      {Operation::files_attributes, [&] { return system.files.attributes(L"C:\\") == ports::file_attribute::invalid; },
       true},
      {Operation::environment_folder, [&] { return system.environment.folder(ports::KnownFolder::windows).empty(); },
       true},
      {Operation::text_to_wide,
       [&] { return system.text.to_wide(ports::code_page::utf8, 0, "a", -1, wide, 8) == 0 && wide[0] == L'\0'; }, true},
      {Operation::winapi_to_wide, [&] { return system.winapi.MultiByteToWideChar(65001, 0, "a", -1, wide, 8) == 0; },
       true},
      {Operation::waits_wait,
       [&] {
         return system.waits.wait({&event, 1}, false, 0) == ports::wait_result::failed;
       },
       true},
      {Operation::waits_close, [&] { return !system.waits.close(event); }, true},
      {Operation::registry_open,
       [&] {
         return system.registry.open(ports::RegistryKey::users, L"", 0, ports::registry_access::read, key) ==
                contract(Operation::registry_open).codes.front();
       },
       false},
      {Operation::cng_open_algorithm,
       [&] {
         ports::CngAlgorithm out{};
         return system.cng.open_algorithm(L"AES", out) == ports::status::not_found;
       },
       false},
      {Operation::log_streams_open,
       [&] { return system.log_streams.open(L"C:\\a.bin", ports::LogMode::append) == ports::LogStream::null; }, true},
      {Operation::xml_parse,
       [&] { return !ports::succeeded(system.xml.parse("<a/>", document, reason)) && document == nullptr; }, false},
  };
  for (const auto& row : cases) {
    const Contract& contract_of = contract(row.operation);
    system.errors.set_last(0);
    faulty.fail(row.operation, 1, true, contract_of.codes.front());
    EXPECT_TRUE(row.failed()) << contract_of.name;
    EXPECT_EQ(system.errors.last(), row.sets_last_error ? contract_of.codes.front() : 0u) << contract_of.name;
    EXPECT_EQ(faulty.failed(row.operation), 1u) << contract_of.name;
  }
  EXPECT_TRUE(world.waits.close(event));
}

}  // namespace
}  // namespace faults
