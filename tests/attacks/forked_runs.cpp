#include "tests/attacks/forked_runs.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace attacks {

namespace {

/// In front of each text on the pipe.
struct Head {
  ForkedRun::End end;
  std::uint32_t length;
};

void send(int pipe, ForkedRun::End end, const std::string& text) {
  const Head head{end, static_cast<std::uint32_t>(text.size())};
  std::string bytes(sizeof head, '\0');
  std::memcpy(bytes.data(), &head, sizeof head);
  bytes += text;
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t wrote = write(pipe, bytes.data() + sent, bytes.size() - sent);
    if (wrote < 0 && errno != EINTR) _exit(99);
    if (wrote > 0) sent += static_cast<std::size_t>(wrote);
  }
}

std::string told_by(int status) {
  if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
  return "exit code " + std::to_string(WEXITSTATUS(status));
}

/// Every `children_at_once`-th number, one child after another.
class Lane {
 public:
  Lane(std::size_t first, std::size_t count, const Body& body, std::chrono::seconds limit)
      : next_(first), count_(count), body_(body), limit_(limit) {}

  [[nodiscard]] bool done() const { return next_ >= count_; }
  [[nodiscard]] int pipe() const { return pipe_; }

  void start() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    std::fflush(nullptr);
    child_ = fork();
    if (child_ < 0) throw std::runtime_error("no child");
    if (child_ == 0) {
      ::close(ends[0]);
      run(ends[1]);
    }
    ::close(ends[1]);
    pipe_ = ends[0];
  }

  /// Takes what has come; at the pipe's end the child is gone, and a fresh one goes on.
  void take(std::vector<ForkedRun>& results) {
    std::array<char, 4096> piece;
    const ssize_t got = read(pipe_, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) return;
    if (got > 0) {
      bytes_.append(piece.data(), static_cast<std::size_t>(got));
      while (take_one(results)) {
      }
      return;
    }
    ::close(pipe_);
    pipe_ = -1;
    int status = 0;
    waitpid(child_, &status, 0);
    bytes_.clear();
    if (!done() && !(WIFEXITED(status) && WEXITSTATUS(status) == 0)) {
      results[next_] = {ForkedRun::End::crashed, told_by(status)};
      next_ += children_at_once;
    }
    if (!done()) start();
  }

 private:
  [[noreturn]] void run(int pipe) {
    for (; !done(); next_ += children_at_once) {
      alarm(static_cast<unsigned>(limit_.count()));
      const std::string text = body_(next_, [pipe](const std::string& last) {
        send(pipe, ForkedRun::End::left, last);
        _exit(0);
      });
      send(pipe, ForkedRun::End::returned, text);
    }
    _exit(0);
  }

  bool take_one(std::vector<ForkedRun>& results) {
    Head head{};
    if (bytes_.size() < sizeof head) return false;
    std::memcpy(&head, bytes_.data(), sizeof head);
    if (bytes_.size() < sizeof head + head.length) return false;
    results[next_] = {head.end, bytes_.substr(sizeof head, head.length)};
    next_ += children_at_once;
    bytes_.erase(0, sizeof head + head.length);
    return true;
  }

  std::size_t next_;
  const std::size_t count_;
  const Body& body_;
  const std::chrono::seconds limit_;
  pid_t child_ = -1;
  int pipe_ = -1;
  std::string bytes_;
};

}  // namespace

std::vector<ForkedRun> run_forked(std::size_t count, const Body& body, std::chrono::seconds limit) {
  std::vector<ForkedRun> results(count);
  std::vector<Lane> lanes;
  for (std::size_t first = 0; first < children_at_once; ++first) lanes.emplace_back(first, count, body, limit);
  for (Lane& lane : lanes) {
    if (!lane.done()) lane.start();
  }
  while (true) {
    std::vector<pollfd> waiting;
    std::vector<Lane*> of;
    for (Lane& lane : lanes) {
      if (lane.pipe() < 0) continue;
      waiting.push_back({lane.pipe(), POLLIN, 0});
      of.push_back(&lane);
    }
    if (waiting.empty()) return results;
    if (poll(waiting.data(), waiting.size(), -1) < 0) continue;
    for (std::size_t at = 0; at < waiting.size(); ++at) {
      if (waiting[at].revents != 0) of[at]->take(results);
    }
  }
}

}  // namespace attacks
