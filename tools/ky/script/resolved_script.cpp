#include "tools/ky/script/resolved_script.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>
#include <utility>

#include "tools/ky/script/element_check.h"

namespace script {

namespace {

std::string_view rule_of(host::FlowFault::Kind kind) {
  switch (kind) {
    case host::FlowFault::Kind::index_out_of_range:
      return rule::bad_number;
    case host::FlowFault::Kind::index_taken:
      return rule::duplicate_index;
    case host::FlowFault::Kind::lost_way:
      break;
  }
  return rule::lost_way;
}

/// Works on its own copy of the script and collects what is wrong.
class Resolver {
 public:
  explicit Resolver(PlainScript script) : script_(std::move(script)) {}

  [[nodiscard]] Structure examine() {
    for (PlainElement& element : script_.elements) {
      check_element(element, faults_);
      take_index(element);
      take_id(element);
    }
    for (std::size_t i = 0; i < script_.elements.size(); ++i) resolve_ways(i);
    // Where an index is not known, every way past it would look lost as well.
    if (indexes_known_) check_ways();
    return {std::move(script_), std::move(points_), std::move(faults_), ways_known_};
  }

 private:
  void fault(Position at, std::string_view rule, std::string reason) {
    ways_known_ = false;
    faults_.push_back({at, std::move(reason), rule});
  }

  /// As the loader counts: the index that an element names, or the previous one plus 1.
  void take_index(const PlainElement& element) {
    // Wraps around, to be refused as an index, behind the greatest of all.
    auto index = static_cast<std::int32_t>(static_cast<std::uint32_t>(previous_index_) + 1);
    if (const PlainAttribute* const named = element.find("index"); named != nullptr) {
      const auto number = whole_integer(named->value);
      if (!number.has_value()) {
        fault(named->at, rule::bad_number, "\"index\" is " + quoted(named->value) + " and must be a number");
        indexes_known_ = false;
      }
      index = number.value_or(index);
    }
    previous_index_ = index;
    last_index_ = std::max(last_index_, index);
    points_.push_back({index, -1, std::nullopt});
  }

  void take_id(PlainElement& element) {
    const auto found = std::find_if(element.attributes.begin(), element.attributes.end(),
                                    [](const PlainAttribute& each) { return each.name == id_attribute; });
    if (found == element.attributes.end()) return;
    if (found->value.empty()) fault(found->at, rule::bad_id, "\"id\" is empty");
    if (found->value == end_id) fault(found->at, rule::bad_id, "the id \"end\" stands for the end of the script");
    const auto [owner, fresh] = ids_.emplace(found->value, Named{points_.back().index, found->at});
    if (!fresh) {
      fault(found->at, rule::bad_id,
            "the id " + quoted(found->value) + " is taken by the element in line " +
                std::to_string(owner->second.at.line));
    }
    element.attributes.erase(found);
  }

  void resolve_ways(std::size_t i) {
    for (PlainAttribute& attribute : script_.elements[i].attributes) {
      if (!is_way(attribute.name)) continue;
      if (attribute.value.starts_with('#')) resolve_id(attribute);
      const auto number = whole_integer(attribute.value);
      if (number.has_value() && attribute.name == "next") points_[i].next = *number;
      if (number.has_value() && attribute.name == "target") points_[i].target = *number;
      if (!number.has_value() && !attribute.value.starts_with('#')) {
        fault(attribute.at, rule::bad_number,
              quoted(attribute.name) + " is " + quoted(attribute.value) + " and must be a number or \"#\" and an id");
      }
    }
  }

  void resolve_id(PlainAttribute& attribute) {
    const std::string id = attribute.value.substr(1);
    const auto found = ids_.find(id);
    if (id == end_id) {
      // Wraps around where the greatest index is out of range anyway.
      attribute.value = std::to_string(static_cast<std::int32_t>(static_cast<std::uint32_t>(last_index_) + 1));
    } else if (found != ids_.end()) {
      attribute.value = std::to_string(found->second.index);
    } else {
      fault(attribute.at, rule::lost_way, "no element has the id " + quoted(id));
    }
  }

  void check_ways() {
    for (host::FlowFault& lost : host::check_flow(points_)) {
      const PlainElement& element = script_.elements[lost.point];
      const PlainAttribute* const attribute = element.find(lost.attribute);
      const std::string subject = attribute != nullptr ? quoted(attribute->name) + ": " : "<" + element.name + "> ";
      fault(attribute != nullptr ? attribute->at : element.at, rule_of(lost.kind), subject + lost.reason);
    }
  }

  struct Named {
    std::int32_t index;
    Position at;
  };

  PlainScript script_;
  std::vector<Fault> faults_;
  std::vector<host::FlowPoint> points_;
  std::unordered_map<std::string, Named> ids_;
  std::int32_t previous_index_ = -1;
  std::int32_t last_index_ = -1;
  bool indexes_known_ = true;
  bool ways_known_ = true;
};

}  // namespace

std::optional<std::int32_t> whole_integer(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  } else if (text.size() > 1 && text.starts_with('0')) {
    base = 8;
  }
  std::uint32_t magnitude = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  const std::int64_t value = negative ? -std::int64_t{magnitude} : std::int64_t{magnitude};
  if (value < INT32_MIN || value > INT32_MAX) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

Structure examine(PlainScript script) {
  return Resolver(std::move(script)).examine();
}

PlainScript resolve(const PlainScript& script) {
  Structure structure = examine(script);
  if (!structure.faults.empty()) throw ScriptError(script.file, std::move(structure.faults));
  return std::move(structure.script);
}

}  // namespace script
