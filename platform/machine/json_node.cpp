#include "platform/machine/json_node.h"

#include <algorithm>
#include <cmath>

#include "installer/utils/base/strings/utf8.h"
#include "platform/machine/document.h"

namespace machine {

void JsonNode::fail(const std::string& reason) const {
  throw DocumentError(file_ + ": " + (place_.empty() ? "" : place_ + ": ") + reason);
}

void JsonNode::only(std::initializer_list<std::string_view> names) const {
  for (const auto& entry : object()) {
    if (std::find(names.begin(), names.end(), entry.first) == names.end()) {
      fail("unknown member \"" + entry.first + "\"");
    }
  }
}

bool JsonNode::has(const char* name) const {
  return object().count(name) != 0;
}

JsonNode JsonNode::child(const std::string& name, const picojson::value& value) const {
  return {value, file_, place_.empty() ? name : place_ + "." + name};
}

JsonNode JsonNode::member(const char* name) const {
  const auto found = object().find(name);
  if (found == object().end()) fail("the member \"" + std::string(name) + "\" is missing");
  return child(name, found->second);
}

std::optional<JsonNode> JsonNode::find(const char* name) const {
  const auto found = object().find(name);
  if (found == object().end()) return std::nullopt;
  return child(name, found->second);
}

const picojson::object& JsonNode::object() const {
  if (!is_object()) fail("an object is wanted here");
  return value_.get<picojson::object>();
}

std::size_t JsonNode::size() const {
  if (!is_array()) fail("an array is wanted here");
  return value_.get<picojson::array>().size();
}

JsonNode JsonNode::at(std::size_t index) const {
  return {value_.get<picojson::array>()[index], file_, place_ + "[" + std::to_string(index) + "]"};
}

const std::string& JsonNode::utf8() const {
  if (!is_text()) fail("a text is wanted here");
  return value_.get<std::string>();
}

std::wstring JsonNode::text() const {
  const std::string& bytes = utf8();
  if (bytes.find('\0') != std::string::npos) fail("a NUL cannot stand here");
  return base::strings::to_wide(bytes);
}

bool JsonNode::boolean() const {
  if (!value_.is<bool>()) fail("true or false is wanted here");
  return value_.get<bool>();
}

std::int64_t JsonNode::integer(std::int64_t low, std::int64_t high) const {
  if (value_.is<std::int64_t>()) {
    if (const std::int64_t whole = value_.get<std::int64_t>(); whole >= low && whole <= high) return whole;
  }
  const double number = is_number() ? value_.get<double>() : std::nan("");
  const bool good = number >= static_cast<double>(low) && number <= static_cast<double>(high);
  if (!good || std::trunc(number) != number) {
    fail("a whole number from " + std::to_string(low) + " to " + std::to_string(high) + " is wanted here");
  }
  return static_cast<std::int64_t>(number);
}

std::wstring JsonNode::text_or(const char* name, std::wstring_view otherwise) const {
  const auto node = find(name);
  return node ? node->text() : std::wstring(otherwise);
}

bool JsonNode::flag(const char* name, bool otherwise) const {
  const auto node = find(name);
  return node ? node->boolean() : otherwise;
}

namespace {

using Input = picojson::input<const char*>;

// Builds the values. The parser's own builder lets objects nest without end and takes the last of two members of one
// name.
class StrictContext {
 public:
  StrictContext(picojson::value& out, std::size_t depth, std::string& reason)
      : out_(out), depth_(depth), reason_(reason) {}
  StrictContext(const StrictContext&) = delete;
  StrictContext& operator=(const StrictContext&) = delete;

  bool set_null() { return true; }
  bool set_bool(bool value) {
    out_ = picojson::value(value);
    return true;
  }
  bool set_number(double number) {
    // The parser does not look at the answer. What is too large stays null, which is no number to whoever reads it.
    if (std::isfinite(number)) out_ = picojson::value(number);
    return true;
  }
  bool set_int64(std::int64_t number) {
    out_ = picojson::value(number);
    return true;
  }
  bool parse_string(Input& in) {
    out_ = picojson::value(picojson::string_type, false);
    return picojson::_parse_string(out_.get<std::string>(), in);
  }
  bool parse_array_start() {
    out_ = picojson::value(picojson::array_type, false);
    return depth_ > 0 || refuse("the document is nested too deeply");
  }
  bool parse_array_item(Input& in, std::size_t /*index*/) {
    auto& items = out_.get<picojson::array>();
    items.emplace_back();
    StrictContext item(items.back(), depth_ - 1, reason_);
    return picojson::_parse(item, in);
  }
  static bool parse_array_stop(std::size_t /*count*/) { return true; }
  bool parse_object_start() {
    out_ = picojson::value(picojson::object_type, false);
    return depth_ > 0 || refuse("the document is nested too deeply");
  }
  bool parse_object_item(Input& in, const std::string& name) {
    const auto [place, fresh] = out_.get<picojson::object>().try_emplace(name);
    if (!fresh) return refuse("the member \"" + name + "\" stands there twice");
    StrictContext item(place->second, depth_ - 1, reason_);
    return picojson::_parse(item, in);
  }
  static bool parse_object_stop() { return true; }

 private:
  bool refuse(std::string reason) {
    reason_ = std::move(reason);
    return false;
  }

  picojson::value& out_;
  const std::size_t depth_;
  std::string& reason_;
};

[[noreturn]] void fail_at(const std::string& file, std::size_t line, const std::string& reason) {
  throw DocumentError(file + ":" + std::to_string(line) + ": " + reason);
}

}  // namespace

picojson::value parse_json(std::string_view text, const std::string& file) {
  if (text.size() > largest_document) throw DocumentError(file + ": the document is larger than 64 MiB");
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (text.substr(0, mark.size()) == mark) text.remove_prefix(mark.size());
  if (const auto bad = base::strings::first_ill_formed(text)) {
    const auto line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(*bad), '\n') + 1;
    fail_at(file, static_cast<std::size_t>(line), "the text is not UTF-8");
  }
  Input in(text.data(), text.data() + text.size());
  picojson::value value;
  std::string reason = "the text is not JSON";
  StrictContext context(value, deepest_document, reason);
  bool good = picojson::_parse(context, in);
  if (good) {
    in.skip_ws();
    good = in.getc() == -1;
  }
  if (!good) fail_at(file, static_cast<std::size_t>(in.line()), reason);
  return value;
}

picojson::value json_text(std::wstring_view text) {
  return picojson::value(base::strings::to_utf8(text));
}

picojson::value json_number(std::uint64_t number) {
  return picojson::value(static_cast<double>(number));
}

}  // namespace machine
