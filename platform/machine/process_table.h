#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/machine/handles.h"
#include "platform/machine/ids.h"
#include "platform/machine/images.h"
#include "platform/machine/scheduler/scheduler.h"
#include "platform/machine/state.h"
#include "platform/ports/inspection.h"

namespace machine {

/// A process, from its start until nobody holds it any more. What changes is under the world's lock.
struct RunningProcess {
  enum class Kind : std::uint8_t { plain, self, parent, system };

  Kind kind = Kind::plain;
  RunningProgram program;  // with its id
  NodeId image = 0;
  std::shared_ptr<Waitable> end;
  std::shared_ptr<Waitable> thread_end;
  std::uint32_t generation = 0;     // how many processes have brought each other up to this one
  std::optional<std::size_t> row;   // in the account of started programs
  std::optional<Milliseconds> due;  // its end, as far as it is known
  bool ended = false;
  bool doomed = false;  // it was terminated, and is about to end
  std::uint32_t exit_code = 0;
  std::size_t handles = 0;
  bool gives_way = false;  // as soon as nobody holds it
};
using ProcessPointer = std::shared_ptr<RunningProcess>;

/// All processes of the machine: who runs, who ends when, who holds whom. Operations take the locks themselves and are
/// called without any.
class ProcessTable {
 public:
  ProcessTable(World& world, Scheduler& scheduler, Ids& ids) : world_(world), scheduler_(scheduler), ids_(ids) {}

  /// Lets the state's processes run, with this process and its parent. Once, before everything else.
  void populate();

  [[nodiscard]] const ProcessPointer& self() const { return self_; }

  /// Starts a program, below the running shell where `by_shell`. It counts as held once.
  [[nodiscard]] ProcessPointer start(const Image& image, std::wstring command_line, std::wstring folder, bool by_shell);
  /// Ends a process soon; false where it has ended or is about to. Not for this process.
  [[nodiscard]] bool terminate(const ProcessPointer& process, std::uint32_t exit_code);

  /// OpenProcess. On success the process counts as held once.
  [[nodiscard]] ports::ErrorCode open(std::uint32_t access, std::uint32_t id, ProcessPointer& process);
  /// Ends one hold.
  void release(const ProcessPointer& process);

  /// What a snapshot lists, oldest first.
  [[nodiscard]] std::vector<ports::ProcessRow> rows();
  /// That a snapshot with these rows was closed or read to its end; that the path of a held process was read.
  void snapshot_done(const std::vector<ports::ProcessRow>& rows);
  void path_was_read(const ProcessPointer& process);

  /// The processes for a machine that goes on from here; this process and what the system always has are left out.
  [[nodiscard]] RunningPrograms survivors();

  /// Whether the process that started this one still runs.
  [[nodiscard]] bool parent_runs();

 private:
  ProcessPointer add(Core& core, RunningProcess::Kind kind, RunningProgram program) KY_REQUIRES(world_.mutex);
  void add_self(Core& core) KY_REQUIRES(world_.mutex);
  ProcessPointer launch(Core& core, const Image& image, RunningProgram program) KY_REQUIRES(world_.mutex);
  void end_at(Core& core, const ProcessPointer& process, Milliseconds when, EndKind how) KY_REQUIRES(world_.mutex);
  void finish(Core& core, const ProcessPointer& process, EndKind how, std::uint32_t exit_code,
              const std::vector<Effect>& effects = {}) KY_REQUIRES(world_.mutex);
  void finish_by_itself(Core& core, const ProcessPointer& process) KY_REQUIRES(world_.mutex);
  void deal_with_all(Core& core, const Effect& effect) KY_REQUIRES(world_.mutex);
  void spawn(Core& core, const RunningProcess& process) KY_REQUIRES(world_.mutex);
  void forget(const ProcessPointer& process) KY_REQUIRES(world_.mutex);
  void give_way_if_free(Core& core, const ProcessPointer& process) KY_REQUIRES(world_.mutex);
  [[nodiscard]] ProcessPointer find(std::uint32_t id) const KY_REQUIRES(world_.mutex);

  World& world_;
  Scheduler& scheduler_;
  Ids& ids_;
  ProcessPointer self_;
  std::vector<ProcessPointer> processes_ KY_GUARDED_BY(world_.mutex);  // oldest first, held ones that ended too
  std::map<std::uint32_t, ProcessPointer> by_id_ KY_GUARDED_BY(world_.mutex);
};

/// What a handle to a process stands for. Its end is the end of a hold that was taken for it.
class ProcessHandle final : public Object {
 public:
  static constexpr std::uint32_t all_access = 0x1FFFFF;

  ProcessHandle(const std::shared_ptr<ProcessTable>& table, ProcessPointer held, std::uint32_t rights)
      : Object(ObjectKind::process, held->end, (rights & ports::process_access::synchronize) != 0),
        process(std::move(held)),
        access(rights),
        table_(table) {}
  ~ProcessHandle() override {
    if (const auto table = table_.lock()) table->release(process);
  }

  const ProcessPointer process;
  const std::uint32_t access;

 private:
  std::weak_ptr<ProcessTable> table_;  // handles that were never closed outlive it
};

}  // namespace machine
