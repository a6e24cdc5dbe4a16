#include "platform/record/describe.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "platform/ports/files.h"

namespace record {

namespace {

std::wstring hex(std::uint64_t number, std::size_t digits) {
  std::wstring text(digits, L'0');
  for (std::size_t place = digits; place-- > 0; number >>= 4) text[place] = L"0123456789abcdef"[number & 15];
  return text;
}

std::wstring bytes_text(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t shown = 64;
  std::wstring text;
  for (const std::uint8_t byte : bytes.first(std::min(bytes.size(), shown))) text += L" " + hex(byte, 2);
  if (bytes.size() <= shown) return text;
  Digest digest;
  digest.add(bytes);
  return text + L" ... (" + std::to_wstring(bytes.size()) + L" bytes, digest " + digest.text() + L")";
}

std::wstring units_of(std::span<const std::uint8_t> bytes) {
  std::wstring units;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    units += static_cast<wchar_t>(bytes[at] | bytes[at + 1] << 8);
  }
  return units;
}

std::uint64_t number_of(std::span<const std::uint8_t> bytes) {
  std::uint64_t number = 0;
  for (std::size_t at = bytes.size(); at-- > 0;) number = number << 8 | bytes[at];
  return number;
}

std::wstring type_name(ports::RegistryType type) {
  switch (type) {
    case ports::RegistryType::none:
      return L"REG_NONE";
    case ports::RegistryType::text:
      return L"REG_SZ";
    case ports::RegistryType::expandable:
      return L"REG_EXPAND_SZ";
    case ports::RegistryType::binary:
      return L"REG_BINARY";
    case ports::RegistryType::number:
      return L"REG_DWORD";
    case ports::RegistryType::link:
      return L"REG_LINK";
    case ports::RegistryType::text_list:
      return L"REG_MULTI_SZ";
    case ports::RegistryType::number64:
      return L"REG_QWORD";
  }
  return L"type " + std::to_wstring(static_cast<std::uint32_t>(type));
}

/// Each text of a list ends in a NUL, and so does the list.
std::wstring list_text(std::wstring_view units) {
  std::wstring text;
  units.remove_suffix(1);
  while (!units.empty()) {
    const std::size_t end = std::min(units.find(L'\0'), units.size());
    text.append(L" \"").append(units.substr(0, end)).append(L"\"");
    units.remove_prefix(std::min(end + 1, units.size()));
  }
  return text;
}

}  // namespace

std::wstring describe_attributes(std::uint32_t attributes) {
  struct Word {
    std::uint32_t bit;
    const wchar_t* text;
  };
  constexpr Word words[] = {{ports::file_attribute::read_only, L"read-only"},
                            {ports::file_attribute::hidden, L"hidden"},
                            {ports::file_attribute::system, L"system"},
                            {ports::file_attribute::archive, L"archive"},
                            {ports::file_attribute::temporary, L"temporary"}};
  std::wstring text;
  for (const Word& word : words) {
    if ((attributes & word.bit) == 0) continue;
    if (!text.empty()) text += L' ';
    text += word.text;
  }
  return text;
}

std::wstring describe_value(const ports::RegistryValue& value) {
  using ports::RegistryType;
  const std::span<const std::uint8_t> bytes = value.bytes;
  const std::wstring units = units_of(bytes);
  // Text is shown as text only in its regular form; any other bytes would be told apart no more.
  const bool regular = bytes.size() % 2 == 0 && !units.empty() && units.back() == L'\0';
  const std::wstring name = type_name(value.type);
  switch (value.type) {
    case RegistryType::text:
    case RegistryType::expandable:
      if (!regular || units.find(L'\0') != units.size() - 1) break;
      return name + L" \"" + units.substr(0, units.size() - 1) + L"\"";
    case RegistryType::text_list:
      if (!regular || (units.size() > 1 && units[units.size() - 2] != L'\0')) break;
      return name + list_text(units);
    case RegistryType::link:
      if (bytes.size() % 2 != 0) break;
      return name + L" \"" + units + L"\"";
    case RegistryType::number:
      if (bytes.size() != 4) break;
      return name + L" 0x" + hex(number_of(bytes), 8);
    case RegistryType::number64:
      if (bytes.size() != 8) break;
      return name + L" 0x" + hex(number_of(bytes), 16);
    default:
      break;
  }
  return name + bytes_text(bytes);
}

void Digest::add(std::span<const std::uint8_t> bytes) {
  for (const std::uint8_t byte : bytes) state_ = (state_ ^ byte) * 0x100000001B3;
}

std::wstring Digest::text() const {
  return hex(state_, 16);
}

}  // namespace record
