#include "platform/ports/inspection.h"

#include <array>
#include <cstring>
#include <optional>

#include "platform/ports/environment.h"
#include "platform/ports/modules.h"
#include "platform/ports/processes.h"
#include "tests/contract/world.h"

namespace contract {

namespace {

using ports::Handle;
namespace access = ports::process_access;
namespace code = ports::code;
namespace status = ports::status;

constexpr std::uint32_t readable = access::query_information | access::vm_read;

class Inspection : public Contract {
 protected:
  ~Inspection() override {
    for (const Handle handle : opened_) system().waits.close(handle);
    for (const ports::CreatedProcess& child : children_) {
      system().processes.terminate(child.process, 0);
      EXPECT_EQ(system().waits.wait({&child.process, 1}, false, 60000), 0U);
      EXPECT_TRUE(system().waits.close(child.thread) && system().waits.close(child.process));
    }
  }

  ports::ProcessInspection& inspection() { return system().inspection; }

  /// Starts a program that lives until the test ends, and gives it the time to set itself up.
  ports::CreatedProcess start(const std::wstring& command_line) {
    const ports::CreatedProcess made = start_ending(command_line);
    const Handle process = open(readable, made.process_id);
    for (int tries = 0; tries < 1000 && image_path(process).empty(); ++tries) system().threads.sleep(10);
    return made;
  }
  ports::CreatedProcess start(const Child& child) { return start(child.command_line()); }
  ports::CreatedProcess start_ending(const std::wstring& command_line) {
    ports::CreatedProcess made;
    EXPECT_TRUE(system().processes.create(command_line.c_str(), nullptr, ports::creation_flag::no_window, made))
        << last_error();
    children_.push_back(made);
    return made;
  }

  /// Closed when the test ends.
  Handle open(std::uint32_t wanted, std::uint32_t id) {
    const Handle handle = inspection().open(wanted, id);
    if (handle != Handle::null) opened_.push_back(handle);
    return handle;
  }

  std::optional<ports::ProcessRow> row_of(std::uint32_t id) {
    const Handle snapshot = inspection().snapshot();
    EXPECT_NE(snapshot, Handle::invalid) << last_error();
    std::optional<ports::ProcessRow> found;
    ports::ProcessRow row;
    bool there = inspection().first(snapshot, row);
    for (; there; there = inspection().next(snapshot, row)) {
      if (row.id == id) found = row;
    }
    EXPECT_EQ(last_error(), code::no_more_files);
    EXPECT_TRUE(system().waits.close(snapshot));
    EXPECT_EQ(code_of(inspection().first(snapshot, row)), code::invalid_handle);
    return found;
  }

  std::wstring image_path(Handle process) {
    std::wstring path(1000, L'#');
    path.resize(inspection().image_path(process, path));
    return path;
  }
  std::wstring device_path(Handle process) {
    std::wstring path(1000, L'#');
    path.resize(inspection().image_device_path(process, path));
    return path;
  }

  template <class Value>
  Value read(Handle process, std::uint64_t address) {
    std::array<std::uint8_t, sizeof(Value)> bytes{};
    EXPECT_TRUE(inspection().read_memory(process, address, bytes)) << last_error();
    Value value{};
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }

  /// The command line as it lies in the process's parameters.
  std::wstring command_line(Handle process) {
    ports::ProcessBasicInformation basic;
    std::uint32_t size = 0;
    EXPECT_EQ(inspection().basic_information(process, basic, size), status::success);
    const auto parameters = read<std::uint64_t>(process, basic.environment_block + 0x20);
    std::wstring text;
    const auto text_at = read<std::uint64_t>(process, parameters + 0x78);
    for (std::uint32_t at = 0; at < read<std::uint16_t>(process, parameters + 0x70); at += 2) {
      text.push_back(static_cast<wchar_t>(read<std::uint16_t>(process, text_at + at)));
    }
    return text;
  }

 private:
  std::vector<Handle> opened_;
  std::vector<ports::CreatedProcess> children_;
};

std::wstring name_in(const std::wstring& path) {
  return path.substr(path.rfind(L'\\') + 1);
}

TEST_P(Inspection, ASnapshotHoldsThisProcessAndWhatItStarted) {
  const Child child = world().child(60000, 0);
  const std::uint32_t own_id = system().processes.current_id();
  const ports::CreatedProcess made = start(child);
  const auto own = row_of(own_id);
  ASSERT_TRUE(own.has_value());
  EXPECT_EQ(own->name, name_in(system().modules.file_name(system().modules.main())));
  const auto started = row_of(made.process_id);
  ASSERT_TRUE(started.has_value());
  EXPECT_EQ(started->name, name_in(child.program));
  EXPECT_EQ(started->parent_id, own_id);
  EXPECT_FALSE(row_of(0x7FFFFFF0).has_value());
  expect_but_for_wine("the idle process", row_of(0).has_value());
}

TEST_P(Inspection, AProcessIsOpenedWithTheRightsThatAreAskedFor) {
  const ports::CreatedProcess made = start(world().child(60000, 0));
  EXPECT_EQ(code_of(open(readable, 0) != Handle::null), code::invalid_parameter);
  EXPECT_EQ(code_of(open(readable, 0x7FFFFFF0) != Handle::null), code::invalid_parameter);

  const Handle waitable = open(access::synchronize, made.process_id);
  EXPECT_EQ(system().waits.wait({&waitable, 1}, false, 0), ports::wait_result::timeout);
  EXPECT_EQ(code_of(system().processes.terminate(waitable, 1)), code::access_denied);
  bool wow64 = true;
  EXPECT_EQ(code_of(inspection().is_wow64(waitable, wow64)), code::access_denied);
  EXPECT_EQ(image_path(waitable), L"");
  EXPECT_EQ(last_error(), code::access_denied);
  EXPECT_EQ(device_path(waitable), L"");
  EXPECT_EQ(last_error(), code::access_denied);
  ports::ProcessBasicInformation basic;
  std::uint32_t size = 0;
  EXPECT_EQ(inspection().basic_information(waitable, basic, size), status::access_denied);
  EXPECT_EQ(inspection().basic_information(Handle::null, basic, size), status::invalid_handle);

  const Handle limited = open(access::query_limited_information, made.process_id);
  EXPECT_TRUE(inspection().is_wow64(limited, wow64));
  EXPECT_FALSE(wow64);
  EXPECT_EQ(image_path(limited), L"");
  EXPECT_EQ(last_error(), code::access_denied);
  EXPECT_NE(device_path(limited), L"");
  std::array<std::uint8_t, 4> bytes{};
  EXPECT_EQ(code_of(inspection().read_memory(limited, 0x10000, bytes)), code::access_denied);

  const Handle ending = open(access::terminate | access::synchronize, made.process_id);
  EXPECT_TRUE(system().processes.terminate(ending, 3));
  EXPECT_EQ(system().waits.wait({&waitable, 1}, false, 60000), 0U);
}

TEST_P(Inspection, AnImageIsToldAsAPathAndByItsDevice) {
  const Child child = world().child(60000, 0);
  const Handle process = open(readable, start(child).process_id);
  EXPECT_EQ(image_path(process), child.program);
  wchar_t device[300] = {};
  ASSERT_GT(system().environment.dos_device(child.program.substr(0, 2).c_str(), device), 2U);
  EXPECT_EQ(device_path(process), device + child.program.substr(2));
  std::array<wchar_t, 8> small{};
  EXPECT_EQ(inspection().image_device_path(process, small), 0U);
  EXPECT_EQ(last_error(), code::insufficient_buffer);
  EXPECT_EQ(image_path(Handle::null), L"");
  EXPECT_EQ(last_error(), code::invalid_handle);
}

TEST_P(Inspection, WhatHasEndedHasAnIdButNoImage) {
  const ports::CreatedProcess made = start_ending(world().child(0, 0).command_line());
  EXPECT_EQ(system().waits.wait({&made.process, 1}, false, 60000), 0U);
  const Handle process = open(readable, made.process_id);
  ASSERT_NE(process, Handle::null) << last_error();
  EXPECT_EQ(image_path(process), L"");
  EXPECT_EQ(last_error(), code::access_denied);
  EXPECT_FALSE(row_of(made.process_id).has_value());
}

TEST_P(Inspection, BasicInformationNamesAProcessAndItsParent) {
  const std::uint32_t own_id = system().processes.current_id();
  const ports::CreatedProcess made = start(world().child(60000, 0));
  ports::ProcessBasicInformation basic;
  std::uint32_t size = 0;
  ASSERT_EQ(inspection().basic_information(inspection().current(), basic, size), status::success);
  EXPECT_EQ(size, ports::process_basic_information_size);
  EXPECT_EQ(basic.id, own_id);
  EXPECT_NE(basic.environment_block, 0U);
  ASSERT_EQ(inspection().basic_information(made.process, basic, size), status::success);
  EXPECT_EQ(basic.id, made.process_id);
  EXPECT_EQ(basic.parent_id, own_id);
  EXPECT_EQ(basic.exit_status, 259);
}

TEST_P(Inspection, ACommandLineLiesInTheParameters) {
  const Child child = world().child(60000, 0);
  for (const std::wstring tail :
       {L"", L" \"two words\"  /x=\"\"", L" Gr\u00FC\u00DFe \u0416\u4E16", L" \xD83D\xDE00"}) {
    const std::wstring line = child.command_line() + tail;
    EXPECT_EQ(command_line(open(readable, start(line).process_id)), line);
  }
  std::array<std::uint8_t, 4> bytes{};
  EXPECT_FALSE(inspection().read_memory(inspection().current(), 0, bytes));
  expect_but_for_wine("memory that is not there", last_error() == code::partial_copy);
}

KY_CONTRACT(Inspection);

}  // namespace

}  // namespace contract
