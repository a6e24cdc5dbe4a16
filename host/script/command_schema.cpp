#include "host/script/command_schema.h"

#include <algorithm>
#include <charconv>

#include "host/script/schema/data.h"
#include "host/script/schema/diagnostics.h"
#include "host/script/schema/files.h"
#include "host/script/schema/flow.h"
#include "host/script/schema/host_deletions.h"
#include "host/script/schema/host_values.h"
#include "host/script/schema/process.h"
#include "ky/factories.h"
#include "ky/keys.h"

namespace host {

namespace {

constexpr CommandSchema commands[] = {
    schema::clear_old_logs,
    schema::close_process,
    schema::close_processes,
    schema::command_line_parser,
    schema::crash_handler,
    schema::delete_file,
    schema::delete_folder,
    schema::delete_reg_key,
    schema::delete_reg_value,
    schema::evaluate,
    schema::get_date_time,
    schema::get_string_from_xml,
    schema::jump,
    schema::load_files_from_resources,
    schema::logger,
    schema::nop,
    schema::path_exists,
    schema::run_command,
    schema::set_progress,
    schema::set_variable,
};
static_assert(std::is_sorted(std::begin(commands), std::end(commands),
                             [](const CommandSchema& a, const CommandSchema& b) { return a.name < b.name; }));

constexpr const CommandSchema* find(std::string_view name) {
  const auto* const found =
      std::lower_bound(std::begin(commands), std::end(commands), name,
                       [](const CommandSchema& each, std::string_view of) { return each.name < of; });
  return found == std::end(commands) || found->name != name ? nullptr : found;
}
#define KY_ASSERT_SCHEMA(stem, command)                                         \
  static_assert(find(#stem) != nullptr && find(#stem)->owner == Owner::library, \
                "describe " #stem " in host/script/schema");
KY_FACTORIES(KY_ASSERT_SCHEMA)
#undef KY_ASSERT_SCHEMA

constexpr AttributeSchema common[] = {
    {.name = "index",
     .form = Form::integer,
     .meaning = "Its place; absent: the one before it in the document plus 1, and 0 for the first."},
    {.name = "next",
     .form = Form::index,
     .default_value = "-1",
     .meaning = "Where the run goes on; negative: at the command that follows."},
    {.name = "errVar",
     .form = Form::integer_name,
     .access = Access::writes,
     .meaning =
         "The variable that receives the command's result, 0 too; it stays as it is where the command is skipped."},
    {.name = "execCondition",
     .form = Form::integer_name,
     .access = Access::reads,
     .meaning = "A variable; where it is 0 the command is skipped, and `next` still holds."},
};

constexpr std::string_view host_keys[] = {
    ky::keys::SelfFree_Decrypter.name,
    ky::keys::String_CommandLine.name,
    ky::keys::String_SystemPath.name,
    ky::keys::String_WindowsPath.name,
    ky::keys::String_ProgramFilesPath.name,
    ky::keys::String_ApplicationPath.name,
    ky::keys::HANDLE_Refresh.name,
    ky::keys::HANDLE_HardRefresh.name,
    ky::keys::HMODULE_CurrentDll.name,
    ky::keys::HMODULE_AdditionalDll.name,
    ky::keys::int_RTL.name,
};

/// The number behind a family's name; 0 for what is none, or is not written as a command writes it.
std::int32_t family_number(std::string_view digits) {
  if (digits.empty() || digits.front() == '0') return 0;
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc() && end == digits.data() + digits.size() && number > 0 ? number : 0;
}

const AttributeSchema* find_plain(std::span<const AttributeSchema> attributes, std::string_view name) {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [name](const AttributeSchema& each) { return !each.numbered && each.name == name; });
  return found == attributes.end() ? nullptr : &*found;
}

bool same(std::wstring_view wide, std::string_view ascii) {
  return std::equal(wide.begin(), wide.end(), ascii.begin(), ascii.end(),
                    [](wchar_t a, char b) { return a == static_cast<wchar_t>(static_cast<unsigned char>(b)); });
}

bool holds(std::span<const std::wstring> attributes, std::string_view name) {
  return std::any_of(attributes.begin(), attributes.end(),
                     [name](const std::wstring& each) { return same(each, name); });
}

}  // namespace

std::span<const CommandSchema> all_commands() {
  return commands;
}

const CommandSchema* schema_of(std::string_view name) {
  return find(name);
}

std::span<const AttributeSchema> common_attributes() {
  return common;
}

FoundAttribute find_attribute(const CommandSchema& command, std::string_view name) {
  if (const AttributeSchema* const own = find_plain(command.attributes, name); own != nullptr) return {own, 0};
  for (const AttributeSchema& family : command.attributes) {
    if (!family.numbered || !name.starts_with(family.name)) continue;
    const std::int32_t number = family_number(name.substr(family.name.size()));
    if (number > 0) return {&family, number};
  }
  return {find_plain(common, name), 0};
}

std::span<const std::string_view> keys_put_by_host() {
  return host_keys;
}

std::string missing_attribute(const CommandSchema& command, std::span<const std::wstring> attributes) {
  for (const AttributeSchema& each : command.attributes) {
    if (each.required && !holds(attributes, each.name)) return "lacks the attribute \"" + std::string(each.name) + '"';
  }
  const std::span<const std::string_view> choice = command.one_of;
  if (choice.empty() ||
      std::any_of(choice.begin(), choice.end(), [&](std::string_view name) { return holds(attributes, name); })) {
    return {};
  }
  std::string missing = choice.size() == 2 ? "lacks both attributes " : "lacks all of the attributes ";
  for (const std::string_view& name : choice) {
    if (&name != &choice.front()) missing += &name == &choice.back() ? " and " : ", ";
    missing.append(1, '"').append(name).append(1, '"');
  }
  return missing;
}

}  // namespace host
