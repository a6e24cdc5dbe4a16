#include "tools/ky/check/key_rules.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "ky/keys.h"
#include "tools/ky/script/element_check.h"

namespace check {

namespace {

std::string bracketed(const KeyRead& read) {
  return '[' + read.key.substr(ky::string_prefix.size()) + ']';
}

class KeyRules {
 public:
  KeyRules(const KnownCommand& command, const KeyTraffic& traffic, std::vector<Finding>& findings)
      : command_(command), traffic_(traffic), findings_(findings) {}

  void check_reads() {
    for (const KeyRead& read : traffic_.reads) {
      if (!read.put && is_first(read)) tell(read);
    }
  }

  void check_kept(const std::unordered_set<std::string_view>& put_in_loop) {
    for (const KeyRead& read : traffic_.reads) {
      if (read.attribute == nullptr || !read.attribute->schema->keeps_expansion || !read.put) continue;
      if (read.as == ReadAs::hidden_variable) continue;
      if (!put_in_loop.contains(read.key) || !is_first(read)) continue;
      find(read, rule::kept_expansion,
           subject(read) + bracketed(read) + " is put inside of this loop, and the text of its first round is kept");
    }
  }

 private:
  void tell(const KeyRead& read) {
    switch (read.as) {
      case ReadAs::xpath_variable:
      case ReadAs::hidden_variable:
        return;  // told with the XPath as a whole
      case ReadAs::variable:
        find(read, rule::undefined_variable, subject(read) + "nothing on any way here puts " + bracketed(read));
        return;
      case ReadAs::needed_text:
      case ReadAs::value:
        find(read, read.as == ReadAs::value ? rule::unwritten_key : rule::undefined_variable,
             subject(read) + "nothing on any way here puts " + read.key);
    }
  }

  /// A key that an attribute names twice is told once.
  [[nodiscard]] bool is_first(const KeyRead& read) const {
    const auto same = std::find_if(traffic_.reads.begin(), traffic_.reads.end(), [&read](const KeyRead& other) {
      return other.attribute == read.attribute && other.key == read.key;
    });
    return &*same == &read;
  }

  [[nodiscard]] std::string subject(const KeyRead& read) const {
    return read.attribute != nullptr ? script::quoted(read.attribute->written->name) + ": "
                                     : "<" + command_.element->name + ">: ";
  }

  void find(const KeyRead& read, std::string_view rule, std::string message) {
    const script::Position at = read.attribute != nullptr ? read.attribute->written->at : command_.element->at;
    findings_.push_back({at, rule, std::move(message)});
  }

  const KnownCommand& command_;
  const KeyTraffic& traffic_;
  std::vector<Finding>& findings_;
};

}  // namespace

void check_keys(const std::vector<KnownCommand>& commands, const FlowGroups& groups,
                const std::vector<KeyTraffic>& traffic, std::vector<Finding>& findings) {
  for (std::size_t group = 0; group < groups.members.size(); ++group) {
    std::unordered_set<std::string_view> put_in_loop;
    for (const std::size_t member : groups.members[group]) {
      if (groups.loops[group]) put_in_loop.insert(traffic[member].writes.begin(), traffic[member].writes.end());
    }
    for (const std::size_t member : groups.members[group]) {
      KeyRules rules(commands[member], traffic[member], findings);
      rules.check_reads();
      if (!put_in_loop.empty()) rules.check_kept(put_in_loop);
    }
  }
}

}  // namespace check
