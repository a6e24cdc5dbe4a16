#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "diagnostics/log_format.h"
#include "diagnostics/reader/byte_source.h"
#include "diagnostics/reader/cursor.h"
#include "diagnostics/reader/run_names.h"
#include "diagnostics/reader/sealed_form.h"
#include "diagnostics/reader/unscrambler.h"

namespace diagnostics::reader {

/// What reading needs to know besides the files.
struct Settings {
  /// Opens sealed files; null where there is no private key.
  const KeyOpener* keys = nullptr;
  Unscrambler unscrambler{log_format::fall_back_key};
  /// One thread's records after the other's instead of one timeline.
  bool by_thread = false;
};

enum class Form : std::uint8_t { sealed, fall_back };

/// The form of a file that begins with `head`: told by its content where that is clear, by its name otherwise.
[[nodiscard]] Form form_of(std::span<const std::uint8_t> head, const std::optional<LogName>& name);

/// A log file, opened.
struct LogFile {
  std::string path;
  std::optional<LogName> name;
  FileSource source;
  std::uint64_t length = 0;
  Form form = Form::sealed;
  SealedKey key;  // of the sealed form, once it is found
  std::uint64_t records_begin = 0;

  /// True where its records can be read.
  [[nodiscard]] bool readable() const { return form == Form::fall_back || key.key != nullptr; }
};

/// Opens a file and finds out its form; tells `problem` where that fails.
[[nodiscard]] std::unique_ptr<LogFile> open_log(const std::string& path, Problem& problem);

/// What a sealed file's key header gave.
enum class HeaderState : std::uint8_t {
  opened,          // the key
  opened_damaged,  // the key, though its length field is wrong
  closed,          // no key
  torn,            // the file ends inside it
};
[[nodiscard]] HeaderState read_key_header(LogFile& file, const KeyOpener& keys);

/// A cursor over a part of a readable file, which outlives it.
[[nodiscard]] std::unique_ptr<Cursor> make_cursor(const LogFile& file, const Settings& settings, const Extent& extent,
                                                  std::size_t piece, Damage damage);

/// Damage in `file` as problems for the sink.
[[nodiscard]] Damage report_to(RecordSink& sink, const LogFile& file);

}  // namespace diagnostics::reader
