#include "platform/machine/machine.h"

#include <utility>

#include "platform/machine/document.h"
#include "platform/machine/document_sections.h"
#include "platform/machine/file_lookup.h"
#include "platform/machine/process_table.h"
#include "platform/ports/build.h"

namespace machine {

State bare_state() {
  State state;
  state.clock.milliseconds_since_1970 = default_moment;
  add_volume(state.files, L"C:", default_serial);
  const EnvironmentFacts& facts = state.environment;
  for (const std::wstring& folder :
       {facts.system, facts.windows, facts.program_files, facts.common_app_data, facts.temp, facts.current_folder}) {
    make_folders(state.files, parse_path(folder, folder).path);
  }
  Path program = parse_path(facts.program, facts.current_folder).path;
  const std::wstring name = std::move(program.parts.back());
  program.parts.pop_back();
  FileNode image;
  image.bytes = std::vector<std::uint8_t>{'M', 'Z'};
  image.size = image.bytes.size();
  image.mapped = true;
  add_node(state.files, make_folders(state.files, program), name, std::move(image));
  make_keys(state.registry, L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes");
  make_keys(state.registry, std::wstring(users_name) + L"\\" + facts.user + L"\\Software");
  return state;
}

Machine::Machine(Options options) : Machine(bare_state(), std::move(options)) {}

Machine::Machine(State state, Options options)
    : copies_(world_, std::move(options.log_folder)),
      ids_(state.next_id),
      termination_(options.max_steps, std::move(options.on_stop)),
      scheduler_({options.pace,
                  [this](const std::wstring& what) {
                    termination_.stop({ports::StopKind::deadlock, what});
                  },
                  options.patience}),
      clock_(scheduler_, state.clock),
      threads_(scheduler_, handles_, ids_, errors_),
      waits_(scheduler_, handles_, names_, errors_),
      files_(world_, handles_, errors_, copies_),
      log_streams_(world_, files_, handles_, copies_),
      crashes_(files_),
      registry_(world_),
      processes_(world_, handles_, scheduler_, ids_, errors_, termination_, com_),
      tasks_(world_, com_),
      drivers_(world_, errors_),
      inspection_(world_, handles_, errors_, processes_),
      tokens_(world_, handles_, errors_),
      signatures_(world_, handles_, errors_),
      modules_(world_, errors_),
      resources_(errors_),
      environment_(world_, errors_),
      text_(errors_),
      winapi_(waits_, clock_, text_) {
  {
    const ports::Lock lock(world_.mutex);
    world_.state = std::move(state);
  }
  processes_.table()->populate();
  termination_.show_faults_to(crashes_);
  entered_.emplace(scheduler_, ids_.take());
}

Machine::~Machine() = default;

std::unique_ptr<Machine> Machine::from_json(std::string_view text, const std::string& file_name, Options options) {
  return std::make_unique<Machine>(read_document(text, file_name), std::move(options));
}

std::string Machine::to_json() {
  return write_document(state());
}

ports::System Machine::system(ports::Engines& engines) {
  return {errors_,
          clock_,
          threads_,
          waits_,
          files_,
          registry_,
          processes_,
          inspection_,
          tokens_,
          signatures_,
          com_,
          tasks_,
          drivers_,
          modules_,
          resources_,
          environment_,
          termination_,
          text_,
          log_streams_,
          crashes_,
          winapi_,
          engines.cipher(),
          engines.key_maker(),
          engines.xml(),
          engines.cng(),
          Modules::library};
}

void Machine::add_resource(std::wstring_view type, std::uint16_t id, std::vector<std::uint8_t> bytes) {
  resources_.add(type, id, std::move(bytes));
}

void Machine::add_procedure(ports::Module module, std::string name, ports::Procedure procedure) {
  modules_.add_procedure(module, std::move(name), procedure);
}

State Machine::state() {
  const ClockStart clock = clock_.state();
  RunningPrograms processes = processes_.table()->survivors();
  const bool parent_runs = processes_.table()->parent_runs();
  const ports::Lock lock(world_.mutex);
  State copy = world_.state;
  copy.clock = clock;
  copy.processes = std::move(processes);
  if (!parent_runs) copy.environment.parent.reset();
  copy.next_id = ids_.next();
  return copy;
}

void Machine::change(const std::function<void(State&)>& action) {
  const ports::Lock lock(world_.mutex);
  action(world_.state);
}

}  // namespace machine
