#include "platform/machine/process_table.h"

#include <algorithm>

#include "platform/machine/file_lookup.h"
#include "platform/machine/programs.h"
#include "platform/ports/codes.h"

namespace machine {

namespace code = ports::code;
namespace access_right = ports::process_access;
using Kind = RunningProcess::Kind;

namespace {

constexpr std::uint32_t system_id = 4;
// Programs that bring each other back for ever would keep the clock where it is.
constexpr std::uint32_t last_generation = 1'000;
constexpr std::wstring_view shell_name = L"explorer.exe";

[[nodiscard]] NodeId file_of(const State& state, const std::wstring& path) {
  const ParsedPath parsed = parse_path(path, state.environment.current_folder);
  if (parsed.error != code::success) return 0;
  const Found found = look_up(state.files, parsed.path, LastLink::followed);
  return found.error == code::success ? found.node : 0;
}

[[nodiscard]] RunningProgram system_process() {
  RunningProgram program;
  program.id = system_id;
  program.name = L"System";
  program.temper.refuses = ProcessHandle::all_access;
  return program;
}

[[nodiscard]] bool lives(const RunningProcess& process) {
  return !process.ended && !process.doomed;
}

}  // namespace

void ProcessTable::populate() {
  scheduler_.perform([this](Core& core) {
    const ports::Lock lock(world_.mutex);
    RunningPrograms programs = std::move(world_.state.processes);
    world_.state.processes = {};
    std::uint32_t highest = system_id;
    for (const RunningProgram& program : programs) highest = std::max(highest, program.id);
    if (const auto& parent = world_.state.environment.parent) highest = std::max(highest, parent->id);
    ids_.set_next(std::max(ids_.next(), (highest / 4 + 1) * 4));
    add(core, Kind::system, system_process());
    for (RunningProgram& program : programs) add(core, Kind::plain, std::move(program));
    add_self(core);
  });
}

void ProcessTable::add_self(Core& core) {
  const EnvironmentFacts& facts = world_.state.environment;
  RunningProgram program;
  if (facts.parent) program.parent = add(core, Kind::parent, *facts.parent)->program.id;
  program.image = facts.program;
  program.command_line = facts.command_line;
  program.folder = facts.current_folder;
  program.temper.wow64 = facts.wow64;
  self_ = add(core, Kind::self, std::move(program));
}

ProcessPointer ProcessTable::add(Core& core, Kind kind, RunningProgram program) {
  auto process = std::make_shared<RunningProcess>();
  if (program.id == 0 || find(program.id) != nullptr) program.id = ids_.take();
  if (program.name.empty()) program.name = last_part(program.image);
  if (program.folder.empty()) program.folder = program.image.substr(0, program.image.find_last_of(L'\\') + 1);
  process->kind = kind;
  process->image = file_of(world_.state, program.image);
  if (process->image != 0) ++world_.state.files.nodes.at(process->image).images;
  const std::wstring label = L"process '" + program.name + L"' (id " + std::to_wstring(program.id) + L")";
  process->end = std::make_shared<Waitable>(WaitableKind::process, label);
  process->thread_end = std::make_shared<Waitable>(WaitableKind::thread, L"first thread of " + label);
  process->program = std::move(program);
  processes_.push_back(process);
  by_id_[process->program.id] = process;
  if (process->program.ends_after) end_at(core, process, core.now() + *process->program.ends_after, EndKind::by_itself);
  return process;
}

ProcessPointer ProcessTable::find(std::uint32_t id) const {
  const auto found = by_id_.find(id);
  return found == by_id_.end() ? nullptr : found->second;
}

ProcessPointer ProcessTable::launch(Core& core, const Image& image, RunningProgram program) {
  State& state = world_.state;
  program.image = image.path;
  if (const Program* known = find_program(state.programs, image.path, program.command_line)) {
    program.temper = known->temper;
    if (!known->stays) program.ends_after = known->runs;
  } else {
    program.ends_after = 0;
  }
  ProcessPointer process = add(core, Kind::plain, std::move(program));
  const RunningProgram& made = process->program;
  process->row = state.started.size();
  state.started.push_back({made.id, made.command_line, made.folder, made.image, std::nullopt, made.parent});
  return process;
}

ProcessPointer ProcessTable::start(const Image& image, std::wstring command_line, std::wstring folder, bool by_shell) {
  ProcessPointer process;
  scheduler_.perform([&](Core& core) {
    const ports::Lock lock(world_.mutex);
    RunningProgram program;
    program.command_line = std::move(command_line);
    program.folder = std::move(folder);
    program.parent = self_->program.id;
    for (const ProcessPointer& other : processes_) {
      if (by_shell && lives(*other) && same_name(other->program.name, shell_name)) program.parent = other->program.id;
    }
    process = launch(core, image, std::move(program));
    ++process->handles;
  });
  return process;
}

void ProcessTable::end_at(Core& core, const ProcessPointer& process, Milliseconds when, EndKind how) {
  if (process->due && *process->due <= when) return;
  process->due = when;
  core.schedule(when, [this, process, how](Core& then) {
    const ports::Lock lock(world_.mutex);
    if (!lives(*process)) return;
    if (how == EndKind::by_itself) {
      finish_by_itself(then, process);
    } else {
      finish(then, process, how, 0);
    }
  });
}

void ProcessTable::finish_by_itself(Core& core, const ProcessPointer& process) {
  const RunningProgram& program = process->program;
  Program behaviour;
  if (const Program* known = find_program(world_.state.programs, program.image, program.command_line)) {
    behaviour = *known;
  }
  finish(core, process, EndKind::by_itself, behaviour.exit_code, behaviour.effects);
}

void ProcessTable::deal_with_all(Core& core, const Effect& effect) {
  const std::vector<ProcessPointer> all = processes_;
  for (const ProcessPointer& process : all) {
    if (process->kind == Kind::self || process->kind == Kind::system || !lives(*process)) continue;
    if (!is_meant(world_.state, process->program, effect.path)) continue;
    const Temper& temper = process->program.temper;
    if (effect.kind == EffectKind::end_process) {
      finish(core, process, EndKind::ended, 1);
    } else if (!temper.hangs) {
      end_at(core, process, core.now() + temper.closes_after, EndKind::asked);
    }
  }
}

void ProcessTable::finish(Core& core, const ProcessPointer& process, EndKind how, std::uint32_t exit_code,
                          const std::vector<Effect>& effects) {
  if (process->ended) return;
  State& state = world_.state;
  const RunningProgram& program = process->program;
  process->ended = true;
  process->exit_code = exit_code;
  const auto image = state.files.nodes.find(process->image);
  if (image != state.files.nodes.end()) --image->second.images;
  if (process->row) state.started[*process->row].exit_code = exit_code;
  state.ended.push_back({program.id, program.image, program.command_line, how, exit_code, core.now()});
  if (process->handles == 0) forget(process);
  for (const Effect& effect : effects) {
    if (effect.kind == EffectKind::ask_to_close || effect.kind == EffectKind::end_process) {
      deal_with_all(core, effect);
    } else {
      apply(state, effect, program.command_line);
    }
  }
  core.signal(*process->end);
  core.signal(*process->thread_end);
  if (how != EndKind::gave_way) spawn(core, *process);
}

void ProcessTable::spawn(Core& core, const RunningProcess& process) {
  const RunningProgram& program = process.program;
  if (program.temper.spawns.empty() || process.generation == last_generation) return;
  const Image image = find_image(world_.state, program.temper.spawns);
  if (image.error != code::success) return;
  RunningProgram next;
  next.parent = program.id;
  next.command_line = program.temper.spawns;
  next.folder = program.folder;
  launch(core, image, std::move(next))->generation = process.generation + 1;
}

void ProcessTable::forget(const ProcessPointer& process) {
  const auto found = by_id_.find(process->program.id);
  if (found != by_id_.end() && found->second == process) by_id_.erase(found);
  processes_.erase(std::remove(processes_.begin(), processes_.end(), process), processes_.end());
}

bool ProcessTable::terminate(const ProcessPointer& process, std::uint32_t exit_code) {
  {
    const ports::Lock lock(world_.mutex);
    if (!lives(*process)) return false;
    process->doomed = true;
  }
  scheduler_.schedule_after(0, [this, process, exit_code](Core& core) {
    const ports::Lock lock(world_.mutex);
    finish(core, process, EndKind::terminated, exit_code);
  });
  return true;
}

ports::ErrorCode ProcessTable::open(std::uint32_t access, std::uint32_t id, ProcessPointer& process) {
  const ports::Lock lock(world_.mutex);
  process = find(id);
  if (process == nullptr) return code::invalid_parameter;
  const Temper& temper = process->program.temper;
  if ((access & temper.refuses) != 0) return code::access_denied;
  if (temper.needs_debug_privilege && !privilege_enabled(world_.state, privilege::debug)) return code::access_denied;
  ++process->handles;
  process->gives_way |= process->program.gives_way == GivesWay::after_open;
  return code::success;
}

void ProcessTable::release(const ProcessPointer& process) {
  scheduler_.perform([&](Core& core) {
    const ports::Lock lock(world_.mutex);
    --process->handles;
    if (process->ended && process->handles == 0) forget(process);
    give_way_if_free(core, process);
  });
}

// An id goes to nobody else while somebody holds its process.
void ProcessTable::give_way_if_free(Core& core, const ProcessPointer& process) {
  if (!process->gives_way || process->handles > 0 || !lives(*process)) return;
  RunningPrograms successor = process->program.successor;
  finish(core, process, EndKind::gave_way, 0);
  for (RunningProgram& next : successor) {
    next.id = process->program.id;
    add(core, Kind::plain, std::move(next));
  }
}

std::vector<ports::ProcessRow> ProcessTable::rows() {
  const ports::Lock lock(world_.mutex);
  std::vector<ports::ProcessRow> rows = {{L"[System Process]", 0, 0}};
  for (const ProcessPointer& process : processes_) {
    const RunningProgram& program = process->program;
    if (!process->ended) rows.push_back({program.name, program.id, program.parent});
  }
  return rows;
}

void ProcessTable::snapshot_done(const std::vector<ports::ProcessRow>& rows) {
  scheduler_.perform([&](Core& core) {
    const ports::Lock lock(world_.mutex);
    for (const ports::ProcessRow& row : rows) {
      const ProcessPointer process = find(row.id);
      if (process == nullptr || process->program.gives_way != GivesWay::after_snapshot) continue;
      process->gives_way = true;
      give_way_if_free(core, process);
    }
  });
}

void ProcessTable::path_was_read(const ProcessPointer& process) {
  const ports::Lock lock(world_.mutex);
  process->gives_way |= process->program.gives_way == GivesWay::after_image_path;
}

bool ProcessTable::parent_runs() {
  const ports::Lock lock(world_.mutex);
  return std::any_of(processes_.begin(), processes_.end(),
                     [](const ProcessPointer& process) { return process->kind == Kind::parent && lives(*process); });
}

RunningPrograms ProcessTable::survivors() {
  RunningPrograms programs;
  scheduler_.perform([&](Core& core) {
    const ports::Lock lock(world_.mutex);
    for (const ProcessPointer& process : processes_) {
      if (process->kind != Kind::plain || !lives(*process)) continue;
      RunningProgram program = process->program;
      // The file may have got another name meanwhile.
      if (process->image != 0 && file_of(world_.state, program.image) != process->image) {
        program.image = path_of(world_.state.files, process->image);
      }
      if (process->due) program.ends_after = static_cast<std::uint32_t>(*process->due - core.now());
      programs.push_back(std::move(program));
    }
  });
  return programs;
}

}  // namespace machine
