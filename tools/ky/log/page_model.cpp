#include "tools/ky/log/page_model.h"

#include <algorithm>

#include "diagnostics/reader/time_stamp.h"
#include "installer/utils/base/strings/utf8.h"
#include "tools/ky/log/record_text.h"

namespace log_tool {

namespace {

using diagnostics::reader::day_length;
using diagnostics::reader::Record;

/// What a thread's first record calls it; the name may hold anything.
std::wstring_view description_in(std::wstring_view message) {
  const std::size_t begin = message.find(L'(');
  const std::size_t end = message.rfind(L") on ");
  if (begin == std::wstring_view::npos || end == std::wstring_view::npos || end <= begin) return {};
  return message.substr(begin + 1, end - begin - 1);
}

template <class Item>
void drop_front(std::vector<Item>& items, std::size_t count) {
  items.erase(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(count));
}

}  // namespace

std::uint32_t TextTable::number_of(const std::string& text) {
  const auto [entry, is_new] = numbers_.try_emplace(text, static_cast<std::uint32_t>(texts_.size()));
  if (is_new) texts_.push_back(text);
  return entry->second;
}

std::size_t PageRun::add(const Record& record) {
  const std::wstring_view message = without_line_end(record.message);
  const std::uint32_t number = thread_of(record);
  PageThread& thread = threads_[number];
  const std::int64_t time = time_of(record, thread);
  if (thread.description.empty() && diagnostics::reader::thread_start(message)) {
    append_script_json(thread.description, description_in(message));
  }
  const Framing framing = framing_of(message);
  const std::uint32_t name = framing.frame == Frame::other ? 0 : names_.number_of(base::strings::to_utf8(framing.name));
  const std::int64_t at = thread.begun ? std::max(thread.at, time) : time;
  lines_.push_back({number, at, framing.frame, framing.index, name, framing.next, finding_of(message)});
  thread.latest = time;
  thread.at = at;
  thread.begun = true;
  records_.push_back({time, files_.number_of(record.file), record.offset, {}});
  append_script_json(records_.back().message, message);
  return records_.back().message.size();
}

void PageRun::leave_out(std::size_t records) {
  drop_front(lines_, records);
  drop_front(records_, records);
  left_out_ += records;
}

std::uint32_t PageRun::thread_of(const Record& record) {
  const auto [entry, is_new] = thread_numbers_.try_emplace(record.thread, static_cast<std::uint32_t>(threads_.size()));
  if (is_new) threads_.push_back({record.thread, {}, 0, 0, false});
  return entry->second;
}

std::int64_t PageRun::time_of(const Record& record, const PageThread& thread) {
  if (record.day) {
    dated_ = true;
    return std::int64_t{*record.day} * day_length + record.time;
  }
  if (!thread.begun) return record.time;
  // A fall of more than half a day is the next one.
  const std::int64_t day = thread.latest - thread.latest % day_length;
  const bool next = day + record.time + day_length / 2 < thread.latest;
  return day + record.time + (next ? day_length : 0);
}

}  // namespace log_tool
