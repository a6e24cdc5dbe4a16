#include "diagnostics/reader/log_file.h"

#include <algorithm>
#include <array>

#include "diagnostics/reader/fall_back_cursor.h"
#include "diagnostics/reader/little_endian.h"
#include "diagnostics/reader/sealed_cursor.h"
#include "diagnostics/reader/time_stamp.h"
#include "platform/desk/desk.h"

namespace diagnostics::reader {

namespace {

constexpr std::size_t head_size = 4096;
// What a wrapped key's length can be: RSA from 512 to 16,384 bits.
constexpr std::uint32_t min_wrapped_size = 64;
constexpr std::uint32_t max_wrapped_size = 2048;

std::string without_path(const std::string& failure, const std::string& path) {
  return failure.starts_with(path + ": ") ? failure.substr(path.size() + 2) : failure;
}

}  // namespace

Form form_of(std::span<const std::uint8_t> head, const std::optional<LogName>& name) {
  std::string_view text(reinterpret_cast<const char*>(head.data()), head.size());
  while (text.starts_with(log_format::byte_order_mark)) text.remove_prefix(log_format::byte_order_mark.size());
  if (time_of(text)) return Form::fall_back;
  if (name) return name->sealed ? Form::sealed : Form::fall_back;
  const std::uint32_t wrapped = head.size() < log_format::length_size ? 0 : little_endian(head);
  if (wrapped >= min_wrapped_size && wrapped <= max_wrapped_size) return Form::sealed;
  return find_time(text) == std::string_view::npos ? Form::sealed : Form::fall_back;
}

std::unique_ptr<LogFile> open_log(const std::string& path, Problem& problem) {
  auto file = std::make_unique<LogFile>();
  file->path = path;
  file->name = parse_log_name(desk::place_of(path).name);
  std::array<std::uint8_t, head_size> head{};
  std::size_t size = 0;
  std::string failed = file->source.open(path);
  if (failed.empty()) failed = file->source.length(file->length);
  if (failed.empty()) failed = file->source.read(0, head, size);
  if (!failed.empty()) {
    problem = {ProblemKind::file, path, 0, 0, without_path(failed, path)};
    return nullptr;
  }
  file->form = form_of(std::span(head).first(size), file->name);
  return file;
}

HeaderState read_key_header(LogFile& file, const KeyOpener& keys) {
  const std::size_t size = log_format::length_size + keys.wrapped_size();
  std::vector<std::uint8_t> header(size);
  std::size_t came = 0;
  if (!file.source.read(0, header, came).empty() || came < size) return HeaderState::torn;
  file.records_begin = size;
  file.key.wrapped.assign(header.begin() + log_format::length_size, header.end());
  file.key.key = keys.open(file.key.wrapped);
  if (file.key.key == nullptr) return HeaderState::closed;
  return little_endian(header) == keys.wrapped_size() ? HeaderState::opened : HeaderState::opened_damaged;
}

std::unique_ptr<Cursor> make_cursor(const LogFile& file, const Settings& settings, const Extent& extent,
                                    std::size_t piece, Damage damage) {
  if (file.form == Form::sealed) {
    return std::make_unique<SealedCursor>(file.source, file.key, extent, piece, std::move(damage));
  }
  return std::make_unique<FallBackCursor>(file.source, settings.unscrambler, extent, piece, std::move(damage));
}

Damage report_to(RecordSink& sink, const LogFile& file) {
  return [&sink, &file](ProblemKind kind, std::uint64_t offset, std::uint64_t bytes, const std::string& text) {
    sink.problem({kind, file.path, offset, bytes, without_path(text, file.path)});
  };
}

}  // namespace diagnostics::reader
