#include "tools/ky/log/log_read.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <thread>

#include "diagnostics/reader/follower.h"
#include "diagnostics/reader/log_reader.h"
#include "diagnostics/reader/run_names.h"
#include "installer/utils/base/strings/utf8.h"
#include "platform/desk/desk.h"
#include "tools/ky/bad_input.h"
#include "tools/ky/desk_engines.h"
#include "tools/ky/log/output_sinks.h"
#include "tools/ky/log/page_sink.h"
#include "tools/ky/log/private_key.h"

namespace log_tool {

namespace {

namespace reader = diagnostics::reader;
using workbench::BadInput;
using workbench::LogReadOptions;

constexpr std::chrono::milliseconds time_between_looks{250};

/// What sealed logs are opened with, where a private key was given.
class Keys {
 public:
  explicit Keys(const LogReadOptions& options) : opener_(desk_.engines().cng()), given_(options.key.has_value()) {
    if (!given_) return;
    if (!opener_.use_private_key(read_private_key(*options.key))) {
      throw BadInput(*options.key + ": it is no private key for logs");
    }
    if (!opener_.use_algorithm(base::strings::to_wide(options.algorithm))) {
      throw BadInput(options.algorithm + ": no such algorithm is known");
    }
  }
  [[nodiscard]] const reader::KeyOpener* opener() const { return given_ ? &opener_ : nullptr; }

 private:
  workbench::DeskEngines desk_;
  reader::KeyOpener opener_;
  const bool given_;
};

std::vector<std::string> paths_of(const LogReadOptions& options) {
  std::vector<std::string> paths;
  for (const std::string& file : options.files) {
    if (desk::is_folder(file)) {
      const std::vector<std::string> inside = reader::files_of_folder(file);
      if (inside.empty()) throw BadInput(file + ": it holds no logs");
      paths.insert(paths.end(), inside.begin(), inside.end());
    } else if (options.run) {
      const std::vector<std::string> run = reader::files_of_run(file);
      paths.insert(paths.end(), run.begin(), run.end());
    } else {
      paths.push_back(file);
    }
  }
  return paths;
}

/// Gives the records of a run in progress; `shown` is called after each look at its files.
void follow(const std::string& path, const reader::Settings& settings, reader::RecordSink& sink,
            const std::function<void()>& shown) {
  if (!desk::exists(path) && reader::files_of_run(path).size() == 1 && reader::files_of_run(path).front() == path) {
    throw BadInput(path + ": cannot be read: it does not exist");
  }
  reader::Follower follower(path, settings, sink);
  while (follower.poll()) {
    shown();
    std::this_thread::sleep_for(time_between_looks);
  }
}

void read_showing(const LogReadOptions& options, reader::RecordSink& sink, const std::function<void()>& shown) {
  const Keys keys(options);
  reader::Settings settings;
  settings.keys = keys.opener();
  settings.by_thread = options.by_thread;
  if (options.follow) {
    follow(options.files.front(), settings, sink, shown);
  } else {
    reader::read_logs(paths_of(options), settings, sink);
  }
}

int write_page(const LogReadOptions& options, std::ostream& err) {
  const std::vector<std::string> logs = paths_of(options);
  if (reader::parse_log_name(desk::place_of(*options.html).name) ||
      std::find(logs.begin(), logs.end(), *options.html) != logs.end()) {
    throw BadInput(*options.html + ": no page is written over a log");
  }
  PageSink sink(err);
  read_into(options, sink);
  const std::string refusal = desk::write_file(*options.html, sink.page());
  if (!refusal.empty()) throw BadInput(refusal);
  return sink.problems() == 0 ? 0 : 1;
}

}  // namespace

void read_into(const LogReadOptions& options, reader::RecordSink& sink) {
  read_showing(options, sink, [] {});
}

int log_read(const LogReadOptions& options, std::ostream& out, std::ostream& err) {
  if (options.html) return write_page(options, err);
  const bool several = options.files.size() > 1 || desk::is_folder(options.files.front());
  std::unique_ptr<OutputSink> sink;
  if (options.json) {
    sink = std::make_unique<JsonSink>(out, err);
  } else {
    sink = std::make_unique<TextSink>(out, err, several && !options.follow);
  }
  read_showing(options, *sink, [&] { (void)sink->flush(); });
  if (!sink->flush()) throw BadInput("the output cannot be written");
  return sink->problems() == 0 ? 0 : 1;
}

}  // namespace log_tool
