#pragma once

#include <memory>
#include <string>
#include <utility>

#include "ky/decrypter.h"
#include "platform/faults/faulty.h"
#include "platform/ports/environment.h"
#include "platform/ports/modules.h"
#include "platform/ports/processes.h"
#include "platform/ports/text.h"
#include "platform/ports/threads.h"

namespace faults {

/// Processes whose calls fail by plan.
class FaultyProcesses final : public Faulty<ports::Processes> {
 public:
  using Faulty::Faulty;

  bool create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t flags,
              ports::CreatedProcess& out) override {
    return ask(Operation::processes_create, false, [&] { return inner_.create(command_line, directory, flags, out); });
  }
  bool exit_code(ports::Handle process, std::uint32_t& out) override {
    return ask(Operation::processes_exit_code, false, [&] { return inner_.exit_code(process, out); });
  }
  bool terminate(ports::Handle process, std::uint32_t exit_code) override {
    return ask(Operation::processes_terminate, false, [&] { return inner_.terminate(process, exit_code); });
  }
  std::uint32_t current_id() override { return inner_.current_id(); }
  bool shell_execute(const ports::ShellRequest& request, ports::Handle& process) override {
    return ask(Operation::processes_shell_execute, false, [&] { return inner_.shell_execute(request, process); });
  }
  ports::Result initialize_com() override {
    return answer(Operation::processes_initialize_com, [&] { return inner_.initialize_com(); });
  }
  void uninitialize_com() override { inner_.uninitialize_com(); }
  ports::Result find_desktop(ports::DesktopShell& out) override {
    return answer(Operation::processes_find_desktop, [&] { return inner_.find_desktop(out); });
  }
  void release_desktop(ports::DesktopShell desktop) override { inner_.release_desktop(desktop); }
  ports::Result execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file, const wchar_t* arguments,
                                   const wchar_t* directory, const wchar_t* operation) override {
    return answer(Operation::processes_execute_on_desktop,
                  [&] { return inner_.execute_on_desktop(desktop, file, arguments, directory, operation); });
  }
};

/// Modules whose calls fail by plan.
class FaultyModules final : public Faulty<ports::Modules> {
 public:
  using Faulty::Faulty;

  ports::Module main() override { return inner_.main(); }
  ports::Procedure procedure(ports::Module module, const char* name) override {
    return ask(Operation::modules_procedure, ports::Procedure{}, [&] { return inner_.procedure(module, name); });
  }
  ports::Module load(const wchar_t* path, std::uint32_t flags) override {
    return ask(Operation::modules_load, ports::Module::null, [&] { return inner_.load(path, flags); });
  }
  bool free(ports::Module module) override {
    return ask(Operation::modules_free, false, [&] { return inner_.free(module); });
  }
  std::wstring file_name(ports::Module module) override {
    return ask(Operation::modules_file_name, std::wstring(), [&] { return inner_.file_name(module); });
  }
};

/// Resources whose calls fail by plan.
class FaultyResources final : public Faulty<ports::Resources> {
 public:
  using Faulty::Faulty;

  ports::ResourcePlace find(ports::Module module, std::uint16_t id, const wchar_t* type) override {
    return ask(Operation::resources_find, ports::ResourcePlace::null, [&] { return inner_.find(module, id, type); });
  }
  ports::ResourceData load(ports::Module module, ports::ResourcePlace place) override {
    return ask(Operation::resources_load, ports::ResourceData::null, [&] { return inner_.load(module, place); });
  }
  std::uint32_t size(ports::Module module, ports::ResourcePlace place) override {
    return ask(Operation::resources_size, std::uint32_t{0}, [&] { return inner_.size(module, place); });
  }
  const std::uint8_t* lock(ports::ResourceData data) override {
    return ask(Operation::resources_lock, static_cast<const std::uint8_t*>(nullptr), [&] { return inner_.lock(data); });
  }
};

/// An environment whose folders fail by plan.
class FaultyEnvironment final : public Faulty<ports::Environment> {
 public:
  using Faulty::Faulty;

  std::wstring folder(ports::KnownFolder which) override {
    return ask(Operation::environment_folder, std::wstring(), [&] { return inner_.folder(which); });
  }
  std::wstring command_line() override { return inner_.command_line(); }
  std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) override {
    return ask(Operation::environment_dos_device, std::uint32_t{0}, [&] { return inner_.dos_device(name, into); });
  }
};

/// Conversions that fail by plan.
class FaultyCodePages final : public Faulty<ports::CodePages> {
 public:
  using Faulty::Faulty;

  std::int32_t to_wide(std::uint32_t code_page, std::uint32_t flags, const char* source, std::int32_t source_length,
                       wchar_t* destination, std::int32_t destination_length) override {
    return ask(Operation::text_to_wide, 0, [&] {
      return inner_.to_wide(code_page, flags, source, source_length, destination, destination_length);
    });
  }
  std::int32_t to_narrow(std::uint32_t code_page, std::uint32_t flags, const wchar_t* source,
                         std::int32_t source_length, char* destination, std::int32_t destination_length) override {
    return ask(Operation::text_to_narrow, 0, [&] {
      return inner_.to_narrow(code_page, flags, source, source_length, destination, destination_length);
    });
  }
  std::string system_message(ports::ErrorCode code) override { return inner_.system_message(code); }
};

/// Threads that do not start by plan.
class FaultyThreads final : public Faulty<ports::Threads> {
 public:
  using Faulty::Faulty;

  ports::Handle start(std::unique_ptr<ports::ThreadBody> body, std::uint32_t& id) override {
    return ask(Operation::threads_start, ports::Handle::null, [&] { return inner_.start(std::move(body), id); });
  }
  std::uint32_t current_id() override { return inner_.current_id(); }
  void sleep(std::uint32_t milliseconds) override { inner_.sleep(milliseconds); }
};

/// Events and waits whose calls fail by plan.
class FaultyWaits final : public Faulty<ports::Waits> {
 public:
  using Faulty::Faulty;

  ports::Handle create_event(bool manual_reset, bool initial_state, const wchar_t* name) override {
    return ask(Operation::waits_create_event, ports::Handle::null,
               [&] { return inner_.create_event(manual_reset, initial_state, name); });
  }
  bool set(ports::Handle event) override {
    return ask(Operation::waits_set, false, [&] { return inner_.set(event); });
  }
  bool reset(ports::Handle event) override {
    return ask(Operation::waits_reset, false, [&] { return inner_.reset(event); });
  }
  std::uint32_t wait(std::span<const ports::Handle> handles, bool all, std::uint32_t milliseconds) override {
    return ask(Operation::waits_wait, ports::wait_result::failed,
               [&] { return inner_.wait(handles, all, milliseconds); });
  }
  bool close(ports::Handle handle) override {
    return ask(Operation::waits_close, false, [&] { return inner_.close(handle); });
  }
};

/// The Decrypter's system calls, failing by plan. Its `Destroy` leaves the inner one alone: neither is its own owner.
class FaultyWinapi final : public Faulty<ky::CWinapiInterface> {
 public:
  using Faulty::Faulty;

  void* Destroy(std::uint32_t) override { return this; }
  void InitializeCriticalSection(void* section) override { inner_.InitializeCriticalSection(section); }
  void DeleteCriticalSection(void* section) override { inner_.DeleteCriticalSection(section); }
  void EnterCriticalSection(void* section) override { inner_.EnterCriticalSection(section); }
  void LeaveCriticalSection(void* section) override { inner_.LeaveCriticalSection(section); }
  void* CreateEventW(void* security, std::int32_t manual_reset, std::int32_t initial_state,
                     const wchar_t* name) override {
    return ask(Operation::winapi_create_event, static_cast<void*>(nullptr),
               [&] { return inner_.CreateEventW(security, manual_reset, initial_state, name); });
  }
  std::int32_t SetEvent(void* event) override {
    return ask(Operation::winapi_set_event, 0, [&] { return inner_.SetEvent(event); });
  }
  std::int32_t CloseHandle(void* handle) override {
    return ask(Operation::winapi_close_handle, 0, [&] { return inner_.CloseHandle(handle); });
  }
  std::uint32_t GetTickCount() override { return inner_.GetTickCount(); }
  std::int32_t MultiByteToWideChar(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                   std::int32_t source_length, wchar_t* destination,
                                   std::int32_t destination_length) override {
    return ask(Operation::winapi_to_wide, 0, [&] {
      return inner_.MultiByteToWideChar(code_page, flags, source, source_length, destination, destination_length);
    });
  }
};

}  // namespace faults
