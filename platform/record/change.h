#pragma once

#include <optional>
#include <string>

#include "platform/ports/types.h"

namespace record {

/// One thing of the system that differs at the end from what it was at the beginning. `before` and `after` describe it
/// for people and tools; nothing means that it was not there. Kinds: file, folder, link, registry-key, registry-value,
/// hive (a mounted one; `path` is its key), task, driver-package (`path` is the INF file's name in the system's
/// folder), delayed-move (booked for the next start; `path` is what moves).
struct Change {
  std::string kind;
  std::wstring path;
  std::optional<std::wstring> before;
  std::optional<std::wstring> after;
  friend bool operator==(const Change&, const Change&) = default;
};

/// Something that was done and left nothing behind. Kinds: process-started and process-ended (`text` is the command
/// line, of a process that the run found running its path or name), process-started-by-shell and
/// process-started-on-desktop (verb, file and arguments), hive-mounted (the key, and the file) and hive-unmounted.
struct Action {
  std::string kind;
  std::wstring text;
  friend bool operator==(const Action&, const Action&) = default;
};

/// An attempt to delete something. The code is the last attempt's: 0 when the system took it, file_not_found or
/// path_not_found when there was nothing, else why it stayed. `gone` tells how it stands now.
struct Deletion {
  std::string kind;
  std::wstring path;
  ports::ErrorCode code = 0;
  bool gone = false;
  friend bool operator==(const Deletion&, const Deletion&) = default;
};

/// A file or folder that got another name at once.
struct Move {
  std::wstring from;
  std::wstring to;
  friend bool operator==(const Move&, const Move&) = default;
};

/// What became of a log file: the run wrote it and left it; it is an older run's, and went or should have gone.
enum class LogFate { written, pruned, remains };

/// A file of this run's log or of an older one's. None of them is a change or a deletion.
struct LogFile {
  std::wstring path;
  LogFate fate = LogFate::written;
  friend bool operator==(const LogFile&, const LogFile&) = default;
};

}  // namespace record
