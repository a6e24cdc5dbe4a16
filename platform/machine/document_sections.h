#pragma once

#include <picojson.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/machine/json_node.h"
#include "platform/machine/path.h"
#include "platform/machine/state.h"

/// The sections of a document, one a concept: each reads and writes itself. A section that is absent leaves the state
/// as it is.
namespace machine {

void read_clock(const JsonNode& node, State& state);
void read_counters(const JsonNode& node, State& state);
void read_drives(const JsonNode& node, State& state);
void read_environment(const JsonNode& node, State& state);
void read_files(const JsonNode& node, State& state);
void read_pending_moves(const JsonNode& node, State& state);
void read_processes(const JsonNode& node, State& state);
void read_programs(const JsonNode& node, State& state);
void read_registry(const JsonNode& node, State& state);

[[nodiscard]] picojson::value write_clock(const State& state);
[[nodiscard]] picojson::value write_counters(const State& state);
[[nodiscard]] picojson::value write_drives(const State& state);
[[nodiscard]] picojson::value write_environment(const State& state);
[[nodiscard]] picojson::value write_files(const State& state);
[[nodiscard]] picojson::value write_pending_moves(const State& state);
[[nodiscard]] picojson::value write_processes(const State& state);
[[nodiscard]] picojson::value write_programs(const State& state);
[[nodiscard]] picojson::value write_registry(const State& state);

/// A full path with drive, backslashes and no "." or ".." in it.
[[nodiscard]] Path read_path(const JsonNode& node);
[[nodiscard]] std::wstring read_path_text(const JsonNode& node);

/// What a document says nothing of.
inline constexpr std::int64_t default_moment = 1'715'688'000'000;  // 2024-05-14T12:00:00Z
inline constexpr std::uint32_t default_serial = 0x4B590001;

/// The text of a moment in UTC, "2024-05-14T07:30:00.000Z".
[[nodiscard]] std::string moment_text(std::int64_t milliseconds_since_1970);

/// A content's bytes, from "text" or "base64"; none where neither is there.
[[nodiscard]] std::vector<std::uint8_t> read_content(const JsonNode& row);
/// Writes it as "text" where that gives it back, else as "base64".
void write_content(const std::vector<std::uint8_t>& bytes, picojson::object& row);

[[nodiscard]] Signature read_signature(const JsonNode& node);
[[nodiscard]] picojson::value write_signature(const Signature& signature);

[[nodiscard]] ports::RegistryValue read_value(const JsonNode& node);
[[nodiscard]] picojson::value write_value(const ports::RegistryValue& value);

/// Where a process is told: only in the list is its id free to choose.
enum class ProcessPlace : std::uint8_t { list, parent, successor };
[[nodiscard]] RunningProgram read_process(const JsonNode& row, ProcessPlace place);
[[nodiscard]] picojson::value write_process(const RunningProgram& program);
/// The members of a process or a program that tell its temper.
void read_temper(const JsonNode& row, Temper& temper);
void write_temper(const Temper& temper, picojson::object& row);

/// A key's path, which starts with the name of a root.
[[nodiscard]] std::wstring read_key_path(const JsonNode& node);

}  // namespace machine
