#include "diagnostics/reader/run_names.h"

#include <charconv>
#include <tuple>

#include "diagnostics/log_format.h"

namespace diagnostics::reader {

namespace {

constexpr std::string_view digits = "0123456789";

bool take_suffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

std::string_view label_of(const LogName& name) {
  return std::string_view(name.stem).substr(0, name.stem.size() - name.start_time.size());
}

}  // namespace

std::optional<LogName> parse_log_name(std::string_view name) {
  LogName parsed;
  if (!take_suffix(name, log_format::extension_word)) return std::nullopt;
  parsed.sealed = take_suffix(name, log_format::sealed_word);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return std::nullopt;
  const std::string_view last = name.substr(dot + 1);
  if (last != log_format::merged_word) {
    std::uint32_t thread = 0;
    const auto [end, error] = std::from_chars(last.data(), last.data() + last.size(), thread);
    if (last.empty() || error != std::errc() || end != last.data() + last.size()) return std::nullopt;
    parsed.thread = thread;
  }
  parsed.stem = name.substr(0, dot);
  const std::size_t before = parsed.stem.find_last_not_of(digits);
  parsed.start_time = parsed.stem.substr(before == std::string::npos ? 0 : before + 1);
  return parsed.start_time.empty() ? std::nullopt : std::optional(std::move(parsed));
}

bool same_run(const LogName& a, const LogName& b) {
  if (a.sealed != b.sealed) return false;
  if (a.merged() == b.merged()) return a.stem == b.stem;
  const LogName& merged = a.merged() ? a : b;
  const LogName& thread = a.merged() ? b : a;
  // The merged file's name may hold a tag between label and time.
  return merged.stem.starts_with(label_of(thread)) && merged.stem.ends_with(thread.start_time) &&
         merged.stem.size() >= thread.stem.size() && !(label_of(thread).empty() && merged.stem != thread.stem);
}

bool reads_before(const LogName& a, const LogName& b) {
  const auto rank = [](const LogName& name) {
    return std::tuple(name.start_time.size(), std::string_view(name.start_time), !name.merged(),
                      name.thread.value_or(0));
  };
  return rank(a) < rank(b);
}

}  // namespace diagnostics::reader
