#include "platform/machine/processes.h"

#include <memory>
#include <optional>
#include <utility>

#include "platform/machine/com.h"
#include "platform/machine/file_lookup.h"
#include "platform/machine/handles.h"
#include "platform/machine/ids.h"
#include "platform/machine/scheduler/scheduler.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::ErrorCode;
using ports::Handle;

namespace {
constexpr std::uint32_t still_running = 259;
}  // namespace

/// A started program. Its facts are under the world's lock.
class RunningProcess final : public Object {
 public:
  RunningProcess(std::uint32_t with_id, NodeId of_image, std::size_t at_row, std::shared_ptr<Waitable> end,
                 std::shared_ptr<Waitable> end_of_thread)
      : Object(ObjectKind::process, std::move(end)),
        id(with_id),
        image(of_image),
        row(at_row),
        thread_end(std::move(end_of_thread)) {}

  const std::uint32_t id;
  const NodeId image;
  const std::size_t row;  // in the account of started programs
  const std::shared_ptr<Waitable> thread_end;
  bool ended = false;
  bool doomed = false;  // it was terminated
  std::uint32_t exit_code = 0;
};

namespace {

// The end of a program: by itself, with what it does, or from outside.
void end_process(World& world, RunningProcess& process, std::uint32_t exit_code, const std::vector<Effect>& effects) {
  const ports::Lock lock(world.mutex);
  State& state = world.state;
  const auto image = state.files.nodes.find(process.image);
  if (image != state.files.nodes.end()) --image->second.images;
  for (const Effect& effect : effects) apply(state, effect, state.started[process.row].command_line);
  process.ended = true;
  process.exit_code = exit_code;
  state.started[process.row].exit_code = exit_code;
}

void signal_end(Core& core, const RunningProcess& process) {
  core.signal(*process.waitable());
  core.signal(*process.thread_end);
}

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
                     const Com& com)
    : world_(world),
      handles_(handles),
      scheduler_(scheduler),
      ids_(ids),
      errors_(errors),
      com_(com),
      own_id_(ids.take()) {}

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
  const Program* program = find_program(state.programs, image.path);
  if (program != nullptr && program->needs_elevation && !state.environment.elevated) return code::elevation_required;
  return code::success;
}

std::shared_ptr<RunningProcess> Processes::start(const Image& image, std::wstring command_line, std::wstring folder) {
  const std::uint32_t id = ids_.take();
  const std::wstring label =
      L"process '" + std::wstring(last_part(image.path)) + L"' (id " + std::to_wstring(id) + L")";
  auto end = std::make_shared<Waitable>(WaitableKind::process, label);
  auto thread_end = std::make_shared<Waitable>(WaitableKind::thread, L"first thread of " + label);
  Program program;
  std::shared_ptr<RunningProcess> process;
  {
    const ports::Lock lock(world_.mutex);
    State& state = world_.state;
    if (const Program* known = find_program(state.programs, image.path)) program = *known;
    ++state.files.nodes.at(image.node).images;
    process = std::make_shared<RunningProcess>(id, image.node, state.started.size(), end, thread_end);
    state.started.push_back({id, std::move(command_line), std::move(folder), image.path, std::nullopt});
  }
  scheduler_.schedule_after(program.runs, [this, process, program](Core& core) {
    {
      const ports::Lock lock(world_.mutex);
      if (process->ended || process->doomed) return;
    }
    end_process(world_, *process, program.exit_code, program.effects);
    signal_end(core, *process);
  });
  return process;
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
  const auto process = start(image, command_line, std::move(folder));
  out.process_id = process->id;
  out.thread_id = ids_.take();
  out.thread = handles_.open(std::make_shared<Object>(ObjectKind::thread, process->thread_end));
  out.process = handles_.open(process);
  return true;
}

bool Processes::exit_code(Handle handle, std::uint32_t& out) {
  const auto process = handles_.find_as<RunningProcess>(handle);
  if (process == nullptr) return fail(code::invalid_handle);
  const ports::Lock lock(world_.mutex);
  out = process->ended ? process->exit_code : still_running;
  return true;
}

bool Processes::terminate(Handle handle, std::uint32_t exit_code) {
  const auto process = handles_.find_as<RunningProcess>(handle);
  if (process == nullptr) return fail(code::invalid_handle);
  {
    const ports::Lock lock(world_.mutex);
    if (process->ended || process->doomed) return fail(code::access_denied);
    process->doomed = true;
  }
  scheduler_.schedule_after(0, [this, process, exit_code](Core& core) {
    end_process(world_, *process, exit_code, {});
    signal_end(core, *process);
  });
  return true;
}

ErrorCode Processes::shell_start(const ports::ShellRequest& request, std::shared_ptr<RunningProcess>& process) {
  if (request.file == nullptr) return code::file_not_found;
  // The browser runs already.
  if (std::wstring_view(request.file).find(L"://") != std::wstring_view::npos) return code::success;
  Image image;
  std::wstring folder;
  {
    const ports::Lock lock(world_.mutex);
    State& state = world_.state;
    image = find_file(state, request.file);
    if (image.error == code::file_not_found) return image.error;
    // The shell opens folders and documents itself.
    if (image.error != code::success || !is_program(state, image)) return code::success;
    const Program* program = find_program(state.programs, image.path);
    const bool raises = request.verb != nullptr && same_name(request.verb, L"runas");
    if (program != nullptr && program->refused && (raises || program->needs_elevation)) return code::cancelled;
    folder = request.directory != nullptr ? request.directory : state.environment.current_folder;
  }
  process = start(image, quoted(image.path, request.arguments), std::move(folder));
  return code::success;
}

bool Processes::shell_execute(const ports::ShellRequest& request, Handle& process) {
  std::shared_ptr<RunningProcess> started;
  process = Handle::null;
  const ErrorCode error = shell_start(request, started);
  if (error != code::success) return fail(error);
  if (started != nullptr) process = handles_.open(std::move(started));
  return true;
}

ports::Result Processes::find_desktop(ports::DesktopShell& out) {
  if (!com_.initialized()) return code::not_initialized;
  const ports::Lock lock(world_.mutex);
  if (!world_.state.environment.desktop) return code::fail;
  out = ports::DesktopShell{1};
  return code::ok;
}

void Processes::release_desktop(ports::DesktopShell /*desktop*/) {}

ports::Result Processes::execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file, const wchar_t* arguments,
                                            const wchar_t* directory, const wchar_t* operation) {
  if (desktop == ports::DesktopShell::null) return code::pointer;
  std::shared_ptr<RunningProcess> started;
  // The shell shows the user what went wrong and tells the caller of success all the same.
  static_cast<void>(shell_start({operation, file, arguments, directory, true}, started));
  return code::ok;
}

}  // namespace machine
