#include "installer/utils/base/process/command_line.h"

#include <cstddef>
#include <string>
#include <vector>

#include "installer/extern/base/include/winapi/win_error_category.h"
#include "tests/support/bound_world.h"
#include "tests/support/fake_inspection.h"

namespace base::process {
namespace {

namespace code = ports::code;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t block_at = 0x7FF0'1234'5000, parameters_at = 0x7FF0'2222'0000, text_at = 0x1'0000'0002;

void put(Bytes& into, std::size_t place, std::uint64_t value, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) into[place + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

/// A process whose parameters claim `length` bytes of `text`.
support::FakeInspection::Process process_with(const std::wstring& text, std::size_t length) {
  support::FakeInspection::Process process;
  process.basic.environment_block = block_at;
  Bytes block(712, 0xAA), parameters(128, 0xAA), characters(text.size() * 2);
  put(block, 0x20, parameters_at, 8);
  put(parameters, 0x70, length, 2);
  put(parameters, 0x78, text_at, 8);
  for (std::size_t i = 0; i < text.size(); ++i) put(characters, i * 2, static_cast<std::uint64_t>(text[i]), 2);
  characters.resize(length);
  process.memory = {{block_at, block}, {parameters_at, parameters}, {text_at, characters}};
  return process;
}
support::FakeInspection::Process process_with(const std::wstring& text) {
  return process_with(text, text.size() * 2);
}

class CommandLineOf : public support::BoundWorld {
 protected:
  void expect(const std::wstring& line, const std::error_code& expected, const std::string& what) {
    std::error_code error;
    EXPECT_EQ(GetProcessCommandLine(8, error), line) << what;
    EXPECT_EQ(error, expected) << what;
  }

  support::FakeInspection fake;
};

TEST_F(CommandLineOf, TheTextIsReadOutOfTheParameters) {
  const std::wstring line = L"\"C:\\a b\\c.exe\" /x \xD83D\xDE00", longest(32767, L'x');
  const struct {
    support::FakeInspection::Process process;
    std::wstring expected;
  } rows[] = {{process_with(line), line},
              {process_with(longest), longest},
              {process_with(L""), L""},
              {process_with(line, 3), L"\"C"},  // the second character's high byte is not read
              {process_with(std::wstring(L"ab\0cd", 5)), L"ab"}};
  for (const auto& row : rows) {
    for (const bool wow64 : {false, true}) {
      start(fake);
      fake.processes[8] = row.process;
      fake.processes[8].wow64 = wow64;
      expect(row.expected, {}, std::to_string(&row - rows));
    }
  }
}

TEST_F(CommandLineOf, WhatCannotBeReadIsToldUpToTheQueryAndNotBeyond) {
  const auto denied = winapi::error_of(code::access_denied);
  const auto process = process_with(L"c.exe");
  for (int call = 1; call <= 3; ++call) {
    start(fake);
    fake.processes[8] = process;
    faulty->fail(Operation::inspection_read_memory, static_cast<std::uint64_t>(call), false, code::partial_copy);
    expect(L"", {}, "read " + std::to_string(call));
  }
  start(fake);
  faulty->fail(Operation::inspection_open, 1, false, code::access_denied);
  expect(L"", denied, "open");

  // The query sets no last error: what was there before is told.
  const auto unanswered = [&](auto change, const char* what) {
    fake.processes[8] = process;
    change(fake.processes[8]);
    start(fake);
    system->errors.set_last(code::access_denied);
    expect(L"", denied, what);
  };
  unanswered([](auto& p) { p.status = ports::status::access_denied; }, "status");
  unanswered([](auto& p) { p.returned = 47; }, "length");
  unanswered([](auto& p) { p.basic.environment_block = 0; }, "address");
  fake.processes[8] = process;
  start(fake);
  faulty->fail(Operation::inspection_is_wow64, 1, true, code::invalid_handle);
  expect(L"c.exe", {}, "kind of process");
}

TEST_F(CommandLineOf, NothingIsKnownOfNoProcess) {
  start(fake);
  expect(L"", winapi::error_of(code::invalid_parameter), "an id of none");
  const ProcessBasicInfo info = QueryProcessBasicInfo(ports::Handle::null);
  EXPECT_FALSE(info.valid);
  EXPECT_EQ(info.information.parent_id + info.information.environment_block, 0u);
}

}  // namespace
}  // namespace base::process
