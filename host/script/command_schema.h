#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace host {

/// How an attribute's value is read.
enum class Form : std::uint8_t {
  integer,        // base 0; text that is no number is 0
  flag,           // an integer, true if not 0
  milliseconds,   // a decimal integer, or INFINITE in any case
  index,          // of a command: an integer, or "#id" in a plain script
  text,           // as it stands
  folder_path,    // a text that should end in a backslash
  file_path,      // a text
  registry_path,  // a text
  xpath,          // a text
  expression,     // a text, see installer/utils/base/expressions
  integer_name,   // the name of an integer variable, without prefix
  text_name,      // the name of a text variable, without prefix
  either_name,    // the name of a text variable where the element has `text_with`, and of an integer variable where it
                  // has `integer_with` or lacks `text_with`; without prefix
  integer_or_name,  // an integer, or the name of an integer variable where the flag `name_with` is set
};

/// What a command does with the variable that a name form names.
enum class Access : std::uint8_t { none, reads, writes };

/// One attribute, or a numbered family of attributes.
struct AttributeSchema {
  std::string_view name{};  // a family's without its number
  Form form = Form::text;
  bool required = false;
  bool expanded = false;              // its `[Name]` forms are replaced when the command runs
  bool keeps_expansion = false;       // and the command keeps the result: a later run sees the first run's values
  Access access = Access::none;       // of name forms
  bool numbered = false;              // name1, name2, ...
  bool gaps_allowed = false;          // of a family: numbers may be missing; otherwise the first gap ends it
  std::uint16_t attributes_each = 1;  // of a family with gaps: numbers go up to the element's attributes, less one,
                                      // divided by this
  std::uint16_t longest = 0;          // characters; 0: only the limit that every value has
  std::string_view integer_with{};    // see Form::either_name
  std::string_view text_with{};       // see Form::either_name
  std::string_view name_with{};       // see Form::integer_or_name
  std::string_view needs{};           // what it does nothing without; of a family, the attribute with the same number
  std::span<const std::string_view> choices{};  // what a value without `[Name]` must be one of, where there are any
  std::string_view default_value{};  // what an absent attribute is taken for, as an author would write it; may be empty
  std::string_view meaning{};        // one sentence for authors
};

/// A key of fixed name that a command touches.
struct KeyUse {
  std::string_view key{};  // with prefix
  Access access = Access::reads;
  std::string_view meaning{};     // one sentence, when and what
  bool may_be_unwritten = false;  // read, and as good without: no check looks for what puts it
};

/// A result or return code, and when.
struct ResultMeaning {
  std::string_view code{};
  std::string_view meaning{};
};

/// What kind of thing a deleting or closing command names.
enum class TargetKind : std::uint8_t {
  file,
  folder,
  registry_key,
  registry_value,
  task,            // in the root folder of the task scheduler
  driver_package,  // by its own INF file name
  process_file,    // processes of one executable
  process_name,    // processes whose name begins so
  ifeo_keys,       // the Image File Execution Options keys of a list of executables
};

/// Where an element names what its command deletes or closes.
struct TargetSchema {
  TargetKind kind = TargetKind::file;
  /// The attribute with the name, of a family its stem; of ifeo_keys the key, with prefix, that holds the list.
  std::string_view name{};
  /// The attribute with what the name stands in: a key of a value, a folder of an executable.
  std::string_view place{};
  /// The attribute with the registry's root.
  std::string_view root{};
};

enum class Owner : std::uint8_t { library, host };

/// What a script's author needs to know of a command, and what loader, checker, schema document and reference pages are
/// made from.
struct CommandSchema {
  std::string_view name{};  // of the element
  std::string_view log_name{};
  Owner owner = Owner::library;
  std::string_view summary{};                     // one sentence
  std::string_view remarks{};                     // paragraphs in Markdown; may be empty
  std::span<const AttributeSchema> attributes{};  // its own, without those that every command has
  std::span<const std::string_view> one_of{};     // at least one of these attributes, where there are any
  std::span<const KeyUse> keys{};
  std::span<const ResultMeaning> results{};
  std::span<const TargetSchema> targets{};  // of a command that deletes or closes
  std::string_view example{};               // an element
};

/// Every command of the library and the host, sorted by name.
[[nodiscard]] std::span<const CommandSchema> all_commands();

/// Null for what is no command.
[[nodiscard]] const CommandSchema* schema_of(std::string_view name);

/// The attributes that every command has: `index`, `next`, `errVar`, `execCondition`.
[[nodiscard]] std::span<const AttributeSchema> common_attributes();

/// An attribute found in a schema by the name that an element gives it.
struct FoundAttribute {
  const AttributeSchema* schema = nullptr;  // null where the command has none of that name
  std::int32_t number = 0;                  // in its family, from 1 on; 0 for an attribute of its own
};
[[nodiscard]] FoundAttribute find_attribute(const CommandSchema& command, std::string_view name);

/// The keys that stand before the first command runs: put by the host, with prefix.
[[nodiscard]] std::span<const std::string_view> keys_put_by_host();

/// The first thing that an element with these attributes lacks, in words; empty where it lacks nothing.
[[nodiscard]] std::string missing_attribute(const CommandSchema& command, std::span<const std::wstring> attributes);

}  // namespace host
