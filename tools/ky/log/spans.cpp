#include "tools/ky/log/spans.h"

#include <algorithm>
#include <limits>
#include <map>

#include "tools/ky/log/message_scan.h"

namespace log_tool {

namespace {

constexpr std::wstring_view without_end_line[] = {L"Logger", L"CrashHandler"};

/// "'key' Begin." in place of "Begin execute.", as one command has it.
bool begins_with_quote(std::wstring_view rest) {
  return rest.starts_with(L'\'') && (rest.ends_with(L"' Begin.") || rest.ends_with(L"' Begin"));
}

std::optional<std::int32_t> next_in(std::wstring_view rest) {
  constexpr std::wstring_view before = L"Next command ";
  const std::size_t at = rest.find(before);
  if (at == std::wstring_view::npos) return std::nullopt;
  rest.remove_prefix(at + before.size());
  return take_index(rest);
}

/// The one command that has wordings of its own and no index.
std::optional<Framing> deletion(std::wstring_view message) {
  constexpr std::wstring_view name = L"DeleteFile";
  if (message == L"Executing DeleteFile command") return Framing{Frame::begin, {}, name, {}};
  if (message == L"Finished delete file") return Framing{Frame::end, {}, name, {}};
  return std::nullopt;
}

class SpanFinder {
 public:
  explicit SpanFinder(std::span<const LogLine> lines) : lines_(lines) {}

  std::vector<Span> find() {
    for (std::size_t at = 0; at < lines_.size(); ++at) take(at);
    std::int64_t log_end = std::numeric_limits<std::int64_t>::min();
    for (const LogLine& line : lines_) log_end = std::max(log_end, line.at);
    for (auto& [id, thread] : threads_) {
      if (thread.open) close(thread, thread.latest, log_end, Ending::log_end);
    }
    std::sort(spans_.begin(), spans_.end(), [](const Span& a, const Span& b) { return a.first < b.first; });
    return std::move(spans_);
  }

 private:
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  struct Thread {
    std::optional<Span> open;
    std::size_t latest = none;     // its last record so far
    std::size_t mentioned = none;  // since when the same command is mentioned
    std::size_t before_mention = none;
    Finding since_mention;
  };

  static void add(Finding& to, const Finding& finding) {
    to.severity = std::max(to.severity, finding.severity);
    if (finding.code) {
      to.code = finding.code;
      to.exit_code = finding.exit_code;
    }
  }

  bool same_command(std::size_t a, std::size_t b) const {
    return lines_[a].name == lines_[b].name && lines_[a].index == lines_[b].index;
  }

  void take(std::size_t at) {
    const LogLine& line = lines_[at];
    Thread& thread = threads_[line.thread];
    if (line.frame != Frame::other) follow_mention(thread, at);
    add(thread.since_mention, line.finding);
    if (line.frame == Frame::begin || line.frame == Frame::lone_begin) {
      begin(thread, at);
    } else if (line.frame == Frame::end) {
      end(thread, at);
    } else if (thread.open) {
      add(thread.open->finding, line.finding);
    }
    thread.latest = at;
  }

  void follow_mention(Thread& thread, std::size_t at) const {
    if (lines_[at].frame != Frame::begin && thread.mentioned != none && same_command(thread.mentioned, at)) return;
    thread.mentioned = at;
    thread.before_mention = thread.latest;
    thread.since_mention = {};
  }

  void begin(Thread& thread, std::size_t at) {
    if (thread.open) close(thread, thread.latest, lines_[at].at, Ending::next_command);
    thread.open = Span{at, at, 0, Ending::log_end, {}, lines_[at].finding};
    if (lines_[at].frame == Frame::lone_begin) close(thread, at, lines_[at].at, Ending::unwritten);
  }

  void end(Thread& thread, std::size_t at) {
    if (thread.open && !same_command(thread.open->first, at)) {
      close(thread, thread.before_mention, lines_[thread.mentioned].at, Ending::next_command);
    }
    if (!thread.open) thread.open = Span{thread.mentioned, at, 0, Ending::log_end, {}, thread.since_mention};
    add(thread.open->finding, lines_[at].finding);
    thread.open->next = lines_[at].next;
    close(thread, at, lines_[at].at, Ending::end_line);
    thread.mentioned = none;
  }

  void close(Thread& thread, std::size_t last, std::int64_t end, Ending ending) {
    thread.open->last = last;
    thread.open->end = end;
    thread.open->ending = ending;
    spans_.push_back(*thread.open);
    thread.open.reset();
  }

  const std::span<const LogLine> lines_;
  std::map<std::uint32_t, Thread> threads_;
  std::vector<Span> spans_;
};

}  // namespace

Framing framing_of(std::wstring_view message) {
  message = without_trailing_space(message);
  if (const auto found = deletion(message)) return *found;
  Framing framing;
  framing.index = take_index(message);
  if (!framing.index) return {};
  if (message.starts_with(L':')) message.remove_prefix(1);
  skip_blanks(message);
  framing.name = take_word(message);
  if (framing.name.empty()) return {};
  if (message.starts_with(L':')) message.remove_prefix(1);
  skip_blanks(message);
  framing.frame = Frame::mention;
  if (message.starts_with(L"Begin execute") || begins_with_quote(message)) {
    const auto* const found = std::find(std::begin(without_end_line), std::end(without_end_line), framing.name);
    framing.frame = found == std::end(without_end_line) ? Frame::begin : Frame::lone_begin;
  } else if (message.starts_with(L"End execute")) {
    framing.frame = Frame::end;
    framing.next = next_in(message);
  }
  return framing;
}

std::vector<Span> spans_of(std::span<const LogLine> lines) {
  return SpanFinder(lines).find();
}

}  // namespace log_tool
