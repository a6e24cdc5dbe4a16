#include "platform/machine/process_memory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace machine {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t first_block = 0x100'0000'0000;
constexpr std::uint64_t distance = 0x100'0000;  // of two processes
constexpr std::uint64_t part = 0x10'0000;       // room for one piece of memory
constexpr std::size_t page = 0x1000;

// Offsets in the environment block and in the parameters.
constexpr std::size_t parameters_at = 0x20;
struct Text {
  std::size_t at;  // of its UNICODE_STRING
  std::wstring RunningProgram::*text;
};
constexpr std::array<Text, 3> texts = {
    {{0x38, &RunningProgram::folder}, {0x60, &RunningProgram::image}, {0x70, &RunningProgram::command_line}}};

void put(Bytes& bytes, std::size_t at, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

[[nodiscard]] Bytes text_piece(std::wstring_view text) {
  Bytes bytes((text.size() * 2 + 2 + page - 1) / page * page);
  for (std::size_t i = 0; i < text.size(); ++i) put(bytes, 2 * i, static_cast<std::uint16_t>(text[i]), 2);
  return bytes;
}

[[nodiscard]] Bytes piece(const RunningProgram& program, std::uint64_t number) {
  const std::uint64_t base = environment_block(program.id);
  Bytes bytes(page);
  if (number == 0) {
    put(bytes, parameters_at, base + part, 8);
    return bytes;
  }
  if (number >= 2) return number - 2 < texts.size() ? text_piece(program.*texts[number - 2].text) : Bytes{};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::uint64_t length = 2 * (program.*texts[i].text).size();
    // Lengths have 16 bits: of a longer text the system itself keeps no more.
    put(bytes, texts[i].at, length, 2);
    put(bytes, texts[i].at + 2, length + 2, 2);
    put(bytes, texts[i].at + 8, base + (i + 2) * part, 8);
  }
  return bytes;
}

}  // namespace

std::uint64_t environment_block(std::uint32_t id) {
  return first_block + id * distance;
}

bool read_process_memory(const RunningProgram& program, std::uint64_t address, std::span<std::uint8_t> into) {
  const std::uint64_t base = environment_block(program.id);
  if (address < base) return false;
  const std::uint64_t offset = (address - base) % part;
  const Bytes bytes = piece(program, (address - base) / part);
  if (offset > bytes.size() || into.size() > bytes.size() - offset) return false;
  std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
  return true;
}

}  // namespace machine
