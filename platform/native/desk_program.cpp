#include "platform/desk/program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <system_error>
#include <thread>

namespace desk {

namespace {

constexpr std::chrono::milliseconds pause_between_looks(5);

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
/// A file without name. Unlike a pipe it takes everything at once, whoever reads when.
using Stream = std::unique_ptr<std::FILE, CloseFile>;

Stream make_stream() {
  Stream stream(std::tmpfile());
  // The program gets a copy, and none of the others.
  if (stream) fcntl(fileno(stream.get()), F_SETFD, FD_CLOEXEC);
  return stream;
}

std::string content_of(std::FILE* stream) {
  std::string content;
  char part[65536];
  std::rewind(stream);
  for (std::size_t n = 0; (n = std::fread(part, 1, sizeof part, stream)) > 0;) content.append(part, n);
  return content;
}

class SpawnActions {
 public:
  SpawnActions() { posix_spawn_file_actions_init(&actions_); }
  ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;

  void give(std::FILE* stream, int as) { posix_spawn_file_actions_adddup2(&actions_, fileno(stream), as); }
  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

int spawn(const std::string& program, const std::vector<std::string>& arguments, const SpawnActions& actions,
          pid_t& process) {
  // The call takes them as writable and leaves them as they are.
  std::vector<char*> values{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) values.push_back(const_cast<char*>(argument.c_str()));
  values.push_back(nullptr);
  return posix_spawnp(&process, program.c_str(), actions.get(), nullptr, values.data(), environ);
}

/// True where the process ended before `limit`; it has ended in any case.
bool wait_for(pid_t process, std::chrono::milliseconds limit, int& status) {
  const auto due = std::chrono::steady_clock::now() + limit;
  while (waitpid(process, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() >= due) {
      kill(process, SIGKILL);
      waitpid(process, &status, 0);
      return false;
    }
    std::this_thread::sleep_for(pause_between_looks);
  }
  return true;
}

std::string message_of(int error) {
  return std::generic_category().message(error);
}

}  // namespace

ProgramRun run_program(const std::string& program, const std::vector<std::string>& arguments, std::string_view input,
                       std::chrono::milliseconds limit) {
  ProgramRun run;
  const Stream in = make_stream();
  const Stream out = make_stream();
  const Stream err = make_stream();
  if (!in || !out || !err || std::fwrite(input.data(), 1, input.size(), in.get()) != input.size() ||
      std::fflush(in.get()) != 0) {
    run.failure = program + ": no temporary file for it: " + message_of(errno);
    return run;
  }
  std::rewind(in.get());

  SpawnActions actions;
  actions.give(in.get(), STDIN_FILENO);
  actions.give(out.get(), STDOUT_FILENO);
  actions.give(err.get(), STDERR_FILENO);
  pid_t process = 0;
  if (const int error = spawn(program, arguments, actions, process); error != 0) {
    run.found = error != ENOENT;
    run.failure = program + ": cannot be started: " + (run.found ? message_of(error) : "it is not on the PATH");
    return run;
  }
  int status = 0;
  if (!wait_for(process, limit, status)) {
    run.failure = program + ": did not end in time";
  } else if (!WIFEXITED(status)) {
    run.failure = program + ": was ended by signal " + std::to_string(WTERMSIG(status));
  } else {
    run.exit_code = WEXITSTATUS(status);
  }
  run.output = content_of(out.get());
  run.errors = content_of(err.get());
  return run;
}

}  // namespace desk
