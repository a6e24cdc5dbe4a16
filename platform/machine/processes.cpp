#include "platform/machine/processes.h"

#include <memory>
#include <optional>
#include <utility>

#include "platform/machine/file_lookup.h"
#include "platform/machine/handles.h"
#include "platform/machine/ids.h"
#include "platform/machine/process_table.h"
#include "platform/machine/scheduler/scheduler.h"
#include "platform/machine/termination.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::ErrorCode;
using ports::Handle;

namespace {
constexpr std::uint32_t still_running = 259;
constexpr std::uint32_t may_query =
    ports::process_access::query_information | ports::process_access::query_limited_information;
constexpr auto com_not_initialized = static_cast<ports::Result>(0x800401F0);
}  // namespace

namespace {

[[nodiscard]] bool is_folder(const State& state, const std::wstring& path) {
  const ParsedPath parsed = parse_path(path, state.environment.current_folder);
  if (parsed.error != code::success) return false;
  const Found found = look_up(state.files, parsed.path, LastLink::followed);
  return found.error == code::success && state.files.nodes.at(found.node).folder;
}

[[nodiscard]] std::wstring quoted(std::wstring_view program, const wchar_t* arguments) {
  std::wstring line = L"\"" + std::wstring(program) + L"\"";
  if (arguments != nullptr && *arguments != 0) line.append(1, L' ').append(arguments);
  return line;
}

}  // namespace

Processes::Processes(World& world, HandleTable& handles, Scheduler& scheduler, Ids& ids, ports::Errors& errors,
                     Termination& termination)
    : world_(world),
      handles_(handles),
      ids_(ids),
      errors_(errors),
      termination_(termination),
      table_(std::make_shared<ProcessTable>(world, scheduler, ids)) {}

std::uint32_t Processes::current_id() {
  return table_->self()->program.id;
}

Handle Processes::handle_of(ProcessPointer held) {
  return handles_.open(std::make_shared<ProcessHandle>(table_, std::move(held), ProcessHandle::all_access));
}

bool Processes::fail(ErrorCode error) {
  errors_.set_last(error);
  return false;
}

ErrorCode Processes::find(const wchar_t* command_line, const wchar_t* directory, Image& image, std::wstring& folder) {
  State& state = world_.state;
  if (command_line == nullptr || program_candidates(command_line).empty()) return code::invalid_parameter;
  folder = directory != nullptr ? directory : state.environment.current_folder;
  if (directory != nullptr && !is_folder(state, folder)) return code::directory_name_invalid;
  image = find_image(state, command_line);
  if (image.error != code::success) return image.error;
  const Program* program = find_program(state.programs, image.path, command_line);
  if (program != nullptr && program->needs_elevation && !state.environment.elevated) return code::elevation_required;
  return code::success;
}

bool Processes::create(const wchar_t* command_line, const wchar_t* directory, std::uint32_t /*flags*/,
                       ports::CreatedProcess& out) {
  Image image;
  std::wstring folder;
  {
    const ports::Lock lock(world_.mutex);
    const ErrorCode error = find(command_line, directory, image, folder);
    if (error != code::success) return fail(error);
  }
  const ProcessPointer process = table_->start(image, command_line, std::move(folder), false);
  out.process_id = process->program.id;
  out.thread_id = ids_.take();
  out.thread = handles_.open(std::make_shared<Object>(ObjectKind::thread, process->thread_end));
  out.process = handle_of(process);
  return true;
}

bool Processes::exit_code(Handle handle, std::uint32_t& out) {
  const auto found = handles_.find_as<ProcessHandle>(handle);
  if (found == nullptr) return fail(code::invalid_handle);
  if ((found->access & may_query) == 0) return fail(code::access_denied);
  const ports::Lock lock(world_.mutex);
  out = found->process->ended ? found->process->exit_code : still_running;
  return true;
}

bool Processes::terminate(Handle handle, std::uint32_t exit_code) {
  const auto found = handles_.find_as<ProcessHandle>(handle);
  if (found == nullptr) return fail(code::invalid_handle);
  if ((found->access & ports::process_access::terminate) == 0) return fail(code::access_denied);
  if (found->process == table_->self()) {
    termination_.stop({ports::StopKind::own_end, L"the process terminates itself"});
  }
  return table_->terminate(found->process, exit_code) || fail(code::access_denied);
}

ErrorCode Processes::shell_start(const ports::ShellRequest& request, bool by_shell, ProcessPointer& process) {
  if (request.file == nullptr) return code::file_not_found;
  // The browser runs already.
  if (std::wstring_view(request.file).find(L"://") != std::wstring_view::npos) return code::success;
  Image image;
  std::wstring folder;
  std::wstring line;
  {
    const ports::Lock lock(world_.mutex);
    State& state = world_.state;
    image = find_file(state, request.file);
    if (image.error == code::file_not_found) return image.error;
    // The shell opens folders and documents itself.
    if (image.error != code::success || !is_program(state, image)) return code::success;
    line = quoted(image.path, request.arguments);
    const Program* program = find_program(state.programs, image.path, line);
    const bool raises = request.verb != nullptr && same_name(request.verb, L"runas");
    if (program != nullptr && program->refused && (raises || program->needs_elevation)) return code::cancelled;
    folder = request.directory != nullptr ? request.directory : state.environment.current_folder;
  }
  process = table_->start(image, std::move(line), std::move(folder), by_shell);
  return code::success;
}

bool Processes::shell_execute(const ports::ShellRequest& request, Handle& process) {
  ProcessPointer started;
  process = Handle::null;
  const ErrorCode error = shell_start(request, false, started);
  if (error != code::success) return fail(error);
  if (started != nullptr) process = handle_of(std::move(started));
  return true;
}

ports::Result Processes::initialize_com() {
  const ports::Lock lock(com_mutex_);
  return ++com_[std::this_thread::get_id()] == 1 ? code::ok : code::nothing;
}

void Processes::uninitialize_com() {
  const ports::Lock lock(com_mutex_);
  const auto found = com_.find(std::this_thread::get_id());
  if (found != com_.end() && --found->second == 0) com_.erase(found);
}

ports::Result Processes::find_desktop(ports::DesktopShell& out) {
  {
    const ports::Lock lock(com_mutex_);
    if (com_.count(std::this_thread::get_id()) == 0) return com_not_initialized;
  }
  const ports::Lock lock(world_.mutex);
  if (!world_.state.environment.desktop) return code::fail;
  out = ports::DesktopShell{1};
  return code::ok;
}

void Processes::release_desktop(ports::DesktopShell /*desktop*/) {}

ports::Result Processes::execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file, const wchar_t* arguments,
                                            const wchar_t* directory, const wchar_t* operation) {
  if (desktop == ports::DesktopShell::null) return code::pointer;
  ProcessPointer started;
  // The shell shows the user what went wrong and tells the caller of success all the same.
  static_cast<void>(shell_start({operation, file, arguments, directory, true}, true, started));
  if (started != nullptr) table_->release(started);
  return code::ok;
}

}  // namespace machine
