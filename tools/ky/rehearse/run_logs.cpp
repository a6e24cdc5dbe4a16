#include "tools/ky/rehearse/run_logs.h"

#include <ostream>
#include <sstream>
#include <utility>

#include "diagnostics/reader/log_reader.h"
#include "installer/utils/base/strings/utf8.h"
#include "tools/ky/log/output_sinks.h"

namespace rehearsal {

std::vector<std::string> own_logs(const Outcome& outcome) {
  std::vector<std::string> paths;
  for (const record::LogFile& log : outcome.logs) {
    if (log.fate == record::LogFate::written) paths.push_back(base::strings::to_utf8(log.path));
  }
  return paths;
}

std::string file_name_of(const std::string& path) {
  return path.substr(path.find_last_of('\\') + 1);
}

void know_keys_of(const NotingCng& cng, diagnostics::reader::KeyOpener& keys) {
  if (cng.algorithm().empty() || !keys.use_algorithm(cng.algorithm())) return;
  for (auto& [wrapped, blob] : cng.wrapped()) keys.know(wrapped, blob);
}

std::optional<std::string> clear_text_of(const std::vector<std::string>& files,
                                         const diagnostics::reader::KeyOpener* keys, std::ostream& err) {
  if (files.empty()) return std::nullopt;
  diagnostics::reader::Settings settings;
  settings.keys = keys;
  std::ostringstream text;
  log_tool::TextSink sink(text, err, false);
  diagnostics::reader::read_logs(files, settings, sink);
  (void)sink.flush();
  return text.str();
}

}  // namespace rehearsal
