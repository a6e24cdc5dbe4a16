#include <array>
#include <cstdio>

#include "platform/machine/document_sections.h"

// Clock, counters, environment and booked moves.
namespace machine {

namespace {

constexpr std::int64_t day_length = 86'400'000;
// 1970 to 9999.
constexpr std::int64_t last_moment = 253'402'300'799'999;

// Days since 1970 of a date of the Gregorian calendar.
[[nodiscard]] std::int64_t days_of(std::int64_t year, std::int64_t month, std::int64_t day) {
  const std::int64_t shifted = month <= 2 ? year - 1 : year;
  const std::int64_t era = shifted / 400;
  const std::int64_t of_era = shifted - era * 400;
  const std::int64_t of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146'097 + of_era * 365 + of_era / 4 - of_era / 100 + of_year - 719'468;
}

struct Date {
  std::int64_t year;
  std::int64_t month;
  std::int64_t day;
};

[[nodiscard]] Date date_of(std::int64_t days) {
  const std::int64_t shifted = days + 719'468;
  const std::int64_t era = shifted / 146'097;
  const std::int64_t of_era = shifted - era * 146'097;
  const std::int64_t year_of_era = (of_era - of_era / 1460 + of_era / 36'524 - of_era / 146'096) / 365;
  const std::int64_t of_year = of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const std::int64_t shifted_month = (5 * of_year + 2) / 153;
  const std::int64_t month = shifted_month < 10 ? shifted_month + 3 : shifted_month - 9;
  return {year_of_era + era * 400 + (month <= 2 ? 1 : 0), month, of_year - (153 * shifted_month + 2) / 5 + 1};
}

[[nodiscard]] std::int64_t read_moment(const JsonNode& node) {
  const std::string& text = node.utf8();
  constexpr std::string_view pattern = "0000-00-00T00:00:00.000Z";
  bool good = text.size() == pattern.size();
  std::array<std::int64_t, 7> fields{};
  std::size_t field = 0;
  for (std::size_t i = 0; good && i < text.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    good = pattern[i] == '0' ? digit : text[i] == pattern[i];
    if (pattern[i] != '0') {
      ++field;
    } else if (digit) {
      fields[field] = fields[field] * 10 + (text[i] - '0');
    }
  }
  const std::int64_t days = good ? days_of(fields[0], fields[1], fields[2]) : -1;
  const std::int64_t moment =
      days * day_length + fields[3] * 3'600'000 + fields[4] * 60'000 + fields[5] * 1000 + fields[6];
  // A date or hour that does not exist is not written as it was read.
  if (!good || moment < 0 || moment > last_moment || moment_text(moment) != text) {
    node.fail("a moment in UTC is wanted here, as \"2024-05-14T07:30:00.000Z\"");
  }
  return moment;
}

// The facts that are paths of folders or files, and those that are flags.
struct PathMember {
  const char* name;
  std::wstring EnvironmentFacts::*fact;
};
constexpr std::array<PathMember, 7> path_members = {{{"system", &EnvironmentFacts::system},
                                                     {"windows", &EnvironmentFacts::windows},
                                                     {"program_files", &EnvironmentFacts::program_files},
                                                     {"common_app_data", &EnvironmentFacts::common_app_data},
                                                     {"temp", &EnvironmentFacts::temp},
                                                     {"program", &EnvironmentFacts::program},
                                                     {"current_folder", &EnvironmentFacts::current_folder}}};
struct FlagMember {
  const char* name;
  bool EnvironmentFacts::*fact;
};
constexpr std::array<FlagMember, 4> flag_members = {{{"elevated", &EnvironmentFacts::elevated},
                                                     {"desktop", &EnvironmentFacts::desktop},
                                                     {"may_link", &EnvironmentFacts::may_link},
                                                     {"wow64", &EnvironmentFacts::wow64}}};

}  // namespace

std::string moment_text(std::int64_t milliseconds) {
  const Date date = date_of(milliseconds / day_length);
  const std::int64_t rest = milliseconds % day_length;
  std::array<char, 64> text{};
  const int length = std::snprintf(
      text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year),
      static_cast<int>(date.month), static_cast<int>(date.day), static_cast<int>(rest / 3'600'000),
      static_cast<int>(rest / 60'000 % 60), static_cast<int>(rest / 1000 % 60), static_cast<int>(rest % 1000));
  return {text.data(), static_cast<std::size_t>(length)};
}

void read_clock(const JsonNode& node, State& state) {
  node.only({"now", "offset_minutes", "ticks"});
  if (const auto now = node.find("now")) state.clock.milliseconds_since_1970 = read_moment(*now);
  if (const auto offset = node.find("offset_minutes")) {
    state.clock.offset_minutes = static_cast<std::int32_t>(offset->integer(-840, 840));
  }
  if (const auto ticks = node.find("ticks")) state.clock.ticks = ticks->number32();
}

picojson::value write_clock(const State& state) {
  picojson::object out;
  out["now"] = picojson::value(moment_text(state.clock.milliseconds_since_1970));
  out["offset_minutes"] = picojson::value(static_cast<double>(state.clock.offset_minutes));
  out["ticks"] = json_number(state.clock.ticks);
  return picojson::value(out);
}

void read_counters(const JsonNode& node, State& state) {
  node.only({"id", "temporary_file"});
  if (const auto id = node.find("id")) {
    state.next_id = static_cast<std::uint32_t>(id->integer(4, 0x7FFFFFFC));
    if (state.next_id % 4 != 0) id->fail("ids are multiples of 4");
  }
  if (const auto number = node.find("temporary_file")) {
    state.files.next_temporary = static_cast<std::uint32_t>(number->integer(1, 0xFFFF));
  }
}

picojson::value write_counters(const State& state) {
  picojson::object out;
  out["id"] = json_number(state.next_id);
  out["temporary_file"] = json_number(state.files.next_temporary);
  return picojson::value(out);
}

namespace {

[[nodiscard]] Privileges read_privileges(const JsonNode& node) {
  Privileges privileges;
  for (std::size_t i = 0; i < node.size(); ++i) {
    const auto value = privilege_named(node.at(i).text());
    if (!value) node.at(i).fail("a privilege is wanted here, as \"SeDebugPrivilege\"");
    privileges.insert(*value);
  }
  return privileges;
}

[[nodiscard]] picojson::value write_privileges(const Privileges& privileges) {
  picojson::array out;
  for (const ports::PrivilegeValue value : privileges) out.push_back(json_text(privilege_name(value)));
  return picojson::value(out);
}

}  // namespace

void read_environment(const JsonNode& node, State& state) {
  node.only({"system", "windows", "program_files", "common_app_data", "temp", "program", "current_folder",
             "command_line", "user", "elevated", "desktop", "may_link", "privileges", "wow64", "parent"});
  EnvironmentFacts& facts = state.environment;
  for (const PathMember& member : path_members) {
    if (const auto path = node.find(member.name)) facts.*member.fact = read_path_text(*path);
  }
  for (const FlagMember& member : flag_members) facts.*member.fact = node.flag(member.name, facts.*member.fact);
  if (node.has("program")) facts.command_line = L"\"" + facts.program + L"\"";
  facts.command_line = node.text_or("command_line", facts.command_line);
  if (const auto privileges = node.find("privileges")) facts.privileges = read_privileges(*privileges);
  if (const auto parent = node.find("parent")) facts.parent = read_process(*parent, ProcessPlace::parent);
  facts.user = node.text_or("user", facts.user);
  if (facts.user.empty() || facts.user.find(L'\\') != std::wstring::npos) {
    node.member("user").fail("the name of a key right below HKEY_USERS is wanted here");
  }
}

picojson::value write_environment(const State& state) {
  const EnvironmentFacts& facts = state.environment;
  picojson::object out;
  for (const PathMember& member : path_members) out[member.name] = json_text(facts.*member.fact);
  for (const FlagMember& member : flag_members) out[member.name] = picojson::value(facts.*member.fact);
  out["command_line"] = json_text(facts.command_line);
  out["user"] = json_text(facts.user);
  if (facts.parent) out["parent"] = write_process(*facts.parent);
  if (facts.privileges) out["privileges"] = write_privileges(*facts.privileges);
  return picojson::value(out);
}

void read_pending_moves(const JsonNode& node, State& state) {
  for (std::size_t i = 0; i < node.size(); ++i) {
    const JsonNode row = node.at(i);
    row.only({"from", "to", "replace"});
    PendingMove move{read_path_text(row.member("from")), {}, row.flag("replace")};
    if (const auto to = row.find("to")) move.to = read_path_text(*to);
    if (move.replace && move.to.empty()) row.fail("what is deleted replaces nothing");
    state.pending_moves.push_back(std::move(move));
  }
}

picojson::value write_pending_moves(const State& state) {
  picojson::array out;
  for (const PendingMove& move : state.pending_moves) {
    picojson::object row;
    row["from"] = json_text(move.from);
    if (!move.to.empty()) row["to"] = json_text(move.to);
    if (move.replace) row["replace"] = picojson::value(true);
    out.emplace_back(row);
  }
  return picojson::value(out);
}

}  // namespace machine
