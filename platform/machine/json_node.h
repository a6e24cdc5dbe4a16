#pragma once

#include <picojson.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace machine {

/// A value of a document and where it stands. Whatever does not fit throws `DocumentError` with file, place and reason.
class JsonNode {
 public:
  JsonNode(const picojson::value& value, const std::string& file, std::string place = {})
      : value_(value), file_(file), place_(std::move(place)) {}

  [[noreturn]] void fail(const std::string& reason) const;

  [[nodiscard]] bool is_text() const { return value_.is<std::string>(); }
  [[nodiscard]] bool is_number() const { return value_.is<double>(); }
  [[nodiscard]] bool is_array() const { return value_.is<picojson::array>(); }
  [[nodiscard]] bool is_object() const { return value_.is<picojson::object>(); }

  /// Refuses an object's member of any other name.
  void only(std::initializer_list<std::string_view> names) const;
  [[nodiscard]] bool has(const char* name) const;
  [[nodiscard]] JsonNode member(const char* name) const;
  [[nodiscard]] std::optional<JsonNode> find(const char* name) const;
  [[nodiscard]] const picojson::object& object() const;
  [[nodiscard]] JsonNode child(const std::string& name, const picojson::value& value) const;

  [[nodiscard]] std::size_t size() const;  // of an array
  [[nodiscard]] JsonNode at(std::size_t index) const;

  [[nodiscard]] const std::string& utf8() const;
  /// Without NUL, which no name and no path has.
  [[nodiscard]] std::wstring text() const;
  [[nodiscard]] bool boolean() const;
  /// A whole number from `low` to `high`, which are at most 2^53.
  [[nodiscard]] std::int64_t integer(std::int64_t low, std::int64_t high) const;
  [[nodiscard]] std::uint32_t number32() const { return static_cast<std::uint32_t>(integer(0, 0xFFFFFFFF)); }

  [[nodiscard]] std::wstring text_or(const char* name, std::wstring_view otherwise) const;
  [[nodiscard]] bool flag(const char* name, bool otherwise = false) const;

 private:
  const picojson::value& value_;
  const std::string& file_;
  std::string place_;
};

/// Parses a document: UTF-8 with or without byte order mark, no member twice in an object, nested no deeper than
/// `deepest_document`. Throws `DocumentError` that names the line.
[[nodiscard]] picojson::value parse_json(std::string_view text, const std::string& file);

[[nodiscard]] picojson::value json_text(std::wstring_view text);
[[nodiscard]] picojson::value json_number(std::uint64_t number);

}  // namespace machine
