#include "tools/ky/script/element_check.h"

#include <string>
#include <utility>

#include "host/script/command_schema.h"
#include "host/script/encipher.h"
#include "installer/utils/base/strings/utf8.h"
#include "tools/ky/script/resolved_script.h"

namespace script {

namespace {

class ElementCheck {
 public:
  ElementCheck(const PlainElement& element, std::vector<Fault>& faults) : element_(element), faults_(faults) {}

  void run() {
    const host::CommandSchema* const schema = host::schema_of(element_.name);
    if (schema == nullptr) {
      fault(element_.at, rule::unknown_element, "<" + element_.name + "> is not the name of a command");
    }
    for (const PlainAttribute& attribute : element_.attributes) {
      check_length(attribute, host::longest_plain_value, attribute.value.size(), "bytes");
    }
    if (schema != nullptr) check_presence(*schema);
  }

 private:
  void fault(Position at, std::string_view rule, std::string reason) {
    faults_.push_back({at, std::move(reason), rule});
  }

  void check_length(const PlainAttribute& attribute, std::size_t longest, std::size_t length, const char* unit) {
    if (length <= longest) return;
    fault(attribute.at, rule::long_value,
          quoted(attribute.name) + " has " + std::to_string(length) + ' ' + unit + ", and a value may have " +
              std::to_string(longest));
  }

  void check_presence(const host::CommandSchema& command) {
    std::vector<std::wstring> names;
    for (const PlainAttribute& attribute : element_.attributes) names.push_back(base::strings::to_wide(attribute.name));
    const std::string missing = host::missing_attribute(command, names);
    if (!missing.empty()) fault(element_.at, rule::missing_attribute, "<" + element_.name + "> " + missing);
  }

  const PlainElement& element_;
  std::vector<Fault>& faults_;
};

}  // namespace

void check_element(const PlainElement& element, std::vector<Fault>& faults) {
  ElementCheck(element, faults).run();
}

bool is_name_here(const PlainElement& element) {
  const PlainAttribute* const by_name = element.find("expValue");
  return by_name != nullptr && whole_integer(by_name->value).value_or(0) != 0;
}

std::string quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

}  // namespace script
