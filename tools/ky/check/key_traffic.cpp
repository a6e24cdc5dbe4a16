#include "tools/ky/check/key_traffic.h"

#include <algorithm>
#include <bitset>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "installer/utils/base/expressions/syntax_check.h"
#include "ky/keys.h"
#include "tools/ky/script/element_check.h"

namespace check {

namespace {

using host::Access;
using host::Form;

std::string integer_key(std::string_view name) {
  return std::string(ky::int_prefix).append(name);
}
std::string text_key(std::string_view name) {
  return std::string(ky::string_prefix).append(name);
}

bool has_text(const KnownCommand& command, std::string_view attribute) {
  const script::PlainAttribute* const written = command.element->find(attribute);
  return written != nullptr && !written->value.empty();
}

class TrafficOf {
 public:
  explicit TrafficOf(const KnownCommand& command) : command_(command) {}

  [[nodiscard]] KeyTraffic run() {
    for (const KnownAttribute& attribute : command_.attributes) {
      take_name(attribute);
      if (attribute.schema->expanded) take_variables(attribute);
      if (attribute.schema->form == Form::expression) take_expression(attribute);
    }
    if (command_.schema != nullptr) take_fixed_keys();
    return std::move(traffic_);
  }

 private:
  void touch(const KnownAttribute& attribute, std::string key, ReadAs as) {
    if (attribute.schema->access == Access::writes) {
      traffic_.writes.push_back(std::move(key));
    } else if (attribute.schema->access == Access::reads) {
      traffic_.reads.push_back({std::move(key), as, &attribute});
    }
  }

  void take_name(const KnownAttribute& attribute) {
    const std::string& name = attribute.written->value;
    if (name.empty()) return;
    switch (attribute.schema->form) {
      case Form::integer_name:
        touch(attribute, integer_key(name), ReadAs::value);
        break;
      case Form::text_name:
        touch(attribute, text_key(name), ReadAs::needed_text);
        break;
      case Form::integer_or_name:
        if (script::is_name_here(*command_.element, *attribute.schema)) {
          touch(attribute, integer_key(name), ReadAs::value);
        }
        break;
      case Form::either_name:
        take_either(attribute, name);
        break;
      default:
        break;
    }
  }

  void take_either(const KnownAttribute& attribute, std::string_view name) {
    const host::AttributeSchema& schema = *attribute.schema;
    const bool text = command_.has(schema.text_with);
    // A jump that has both looks at neither variable.
    if (schema.access == Access::reads && text && command_.has("value")) return;
    if (text) touch(attribute, text_key(name), ReadAs::value);
    if (!text || command_.has(schema.integer_with)) touch(attribute, integer_key(name), ReadAs::value);
  }

  void take_variables(const KnownAttribute& attribute) {
    const ReadAs as = attribute.schema->form == Form::xpath ? ReadAs::xpath_variable : ReadAs::variable;
    for (const std::string_view name : expanded_names(attribute.written->value)) {
      traffic_.reads.push_back({text_key(name), as, &attribute});
      const std::size_t inner = name.rfind('[');
      if (as == ReadAs::variable || inner == std::string_view::npos) continue;
      traffic_.reads.push_back({text_key(name.substr(inner + 1)), ReadAs::hidden_variable, &attribute});
    }
  }

  void take_expression(const KnownAttribute& attribute) {
    for (const auto& use : base::expressions::check_syntax(attribute.written->value).variables) {
      if (use.written) {
        traffic_.writes.push_back(integer_key(use.name));
      } else {
        traffic_.reads.push_back({integer_key(use.name), ReadAs::value, &attribute});
      }
    }
  }

  void take_fixed_keys() {
    for (const host::KeyUse& use : command_.schema->keys) {
      if (use.access == Access::writes) {
        traffic_.writes.emplace_back(use.key);
      } else if (use.access == Access::reads && !use.may_be_unwritten && !is_moot(use.key)) {
        traffic_.reads.push_back({std::string(use.key), ReadAs::value, nullptr});
      }
    }
  }

  /// True for a key that only another form of the command reads.
  [[nodiscard]] bool is_moot(std::string_view key) const {
    return key == "String_InstallItemsXml" && (has_text(command_, "xmlVar") || has_text(command_, "file"));
  }

  const KnownCommand& command_;
  KeyTraffic traffic_;
};

/// Carries what is put along the ways, for some of the keys that are read.
class Carrying {
 public:
  static constexpr std::size_t keys_at_once = 512;
  using Keys = std::bitset<keys_at_once>;

  Carrying(const Flow& flow, const FlowGroups& groups, std::vector<KeyTraffic>& traffic)
      : flow_(flow), groups_(groups), traffic_(traffic) {
    for (KeyTraffic& each : traffic_) {
      for (const KeyRead& read : each.reads) numbers_.emplace(read.key, numbers_.size());
    }
  }

  void run() {
    for (std::size_t first = 0; first < numbers_.size(); first += keys_at_once) carry(first);
  }

 private:
  /// The number among those carried, or nothing to carry: `keys_at_once`.
  [[nodiscard]] std::size_t place_of(const std::string& key, std::size_t first) const {
    const auto found = numbers_.find(key);
    if (found == numbers_.end() || found->second < first) return keys_at_once;
    return std::min(found->second - first, keys_at_once);
  }

  void carry(std::size_t first) {
    std::vector<Keys> before(groups_.members.size());
    if (!before.empty()) {
      for (const std::string_view key : host::keys_put_by_host()) put(before.back(), std::string(key), first);
    }
    // Every way leads to an earlier group or stays: each group is complete when its turn comes.
    for (std::size_t group = groups_.members.size(); group-- > 0;) {
      Keys after = before[group];
      for (const std::size_t member : groups_.members[group]) {
        for (const std::string& key : traffic_[member].writes) put(after, key, first);
      }
      if (groups_.loops[group]) before[group] = after;
      for (const std::size_t member : groups_.members[group]) {
        for (const std::size_t to : flow_.ways[member].to) {
          if (to != nowhere && groups_.of[to] != group) before[groups_.of[to]] |= after;
        }
        for (KeyRead& read : traffic_[member].reads) {
          const std::size_t place = place_of(read.key, first);
          if (place < keys_at_once) read.put = before[group].test(place);
        }
      }
    }
  }

  void put(Keys& keys, const std::string& key, std::size_t first) const {
    if (const std::size_t place = place_of(key, first); place < keys_at_once) keys.set(place);
  }

  const Flow& flow_;
  const FlowGroups& groups_;
  std::vector<KeyTraffic>& traffic_;
  std::unordered_map<std::string, std::size_t> numbers_;
};

}  // namespace

KeyTraffic traffic_of(const KnownCommand& command) {
  return TrafficOf(command).run();
}

void find_puts(const Flow& flow, const FlowGroups& groups, std::vector<KeyTraffic>& traffic) {
  Carrying(flow, groups, traffic).run();
}

}  // namespace check
