#include "tools/ky/check/xpath_rules.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "installer/utils/base/strings/utf8.h"
#include "ky/keys.h"
#include "platform/ports/codes.h"
#include "tools/ky/script/element_check.h"

namespace check {

namespace {

/// Between brackets in an XPath: a variable, a predicate, or something that is taken for one and meant as the other.
struct Bracketed {
  std::string_view name;
  bool put = false;
  bool like_predicate = false;
};

bool is_letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool is_name_character(char c) {
  return is_letter(c) || (c >= '0' && c <= '9') || c == '.' || c == '-';
}

/// A predicate stands behind a step, or holds what no variable is called.
bool is_like_predicate(std::string_view xpath, std::size_t open, std::string_view name) {
  if (!is_letter(name.front()) || !std::all_of(name.begin(), name.end(), is_name_character)) return true;
  if (open == 0) return false;
  const char before = xpath[open - 1];
  return is_name_character(before) || before == ']' || before == ')' || before == '*';
}

class XPathCheck {
 public:
  XPathCheck(const KnownAttribute& attribute, const KeyTraffic& traffic, XPathTrial& trial,
             std::vector<Finding>& findings)
      : attribute_(attribute), xpath_(attribute.written->value), trial_(trial), findings_(findings) {
    for (const std::string_view name : expanded_names(xpath_)) {
      const auto open = static_cast<std::size_t>(name.data() - xpath_.data()) - 1;
      const auto read = std::find_if(traffic.reads.begin(), traffic.reads.end(), [&](const KeyRead& each) {
        return each.attribute == &attribute && each.key.substr(ky::string_prefix.size()) == name;
      });
      brackets_.push_back({name, read != traffic.reads.end() && read->put, is_like_predicate(xpath_, open, name)});
    }
    hides_variable_ = std::any_of(traffic.reads.begin(), traffic.reads.end(),
                                  [&](const KeyRead& read) { return read.attribute == &attribute && read.put; });
  }

  void run() {
    const bool expands =
        std::all_of(brackets_.begin(), brackets_.end(), [](const Bracketed& each) { return each.put; });
    if (expands) {
      check_expanded();
    } else {
      check_as_it_stands();
    }
  }

 private:
  void find(std::string_view rule, const std::string& message) {
    findings_.push_back({attribute_.written->at, rule, script::quoted(attribute_.written->name) + ": " + message});
  }

  void check_expanded() {
    if (!trial_.parses(with_placeholders())) {
      find(rule::bad_xpath, script::quoted(xpath_) + " is no XPath that selects nodes");
      return;
    }
    const auto predicate =
        std::find_if(brackets_.begin(), brackets_.end(), [](const Bracketed& each) { return each.like_predicate; });
    // Where the text is no XPath without the variable, it is meant as one.
    if (predicate == brackets_.end() || !trial_.parses(xpath_)) return;
    find(rule::xpath_brackets,
         '[' + std::string(predicate->name) + "] looks like a predicate, and is replaced by the variable of that name");
  }

  void check_as_it_stands() {
    const std::size_t before = findings_.size();
    for (const Bracketed& each : brackets_) {
      if (each.put || each.like_predicate) continue;
      find(rule::undefined_variable, "nothing on any way here puts [" + std::string(each.name) + ']');
    }
    if (findings_.size() != before) return;
    if (hides_variable_) {
      const auto predicate =
          std::find_if(brackets_.begin(), brackets_.end(), [](const Bracketed& each) { return !each.put; });
      find(rule::xpath_brackets, '[' + std::string(predicate->name) +
                                     "] is looked up as a variable that nothing puts, and so no variable is replaced");
    } else if (!trial_.parses(xpath_)) {
      find(rule::bad_xpath, script::quoted(xpath_) + " is no XPath that selects nodes");
    }
  }

  /// Each variable may hold a name.
  [[nodiscard]] std::string with_placeholders() const {
    std::string text = xpath_;
    for (auto each = brackets_.rbegin(); each != brackets_.rend(); ++each) {
      text.replace(static_cast<std::size_t>(each->name.data() - xpath_.data()) - 1, each->name.size() + 2, "x");
    }
    return text;
  }

  const KnownAttribute& attribute_;
  const std::string& xpath_;
  XPathTrial& trial_;
  std::vector<Finding>& findings_;
  std::vector<Bracketed> brackets_;
  bool hides_variable_ = false;
};

}  // namespace

bool XPathTrial::parses(const std::string& xpath) {
  if (!document_.has_value()) {
    document_.emplace(xml_);
    if (xml_.create_document(document_->receive()) != ports::code::ok ||
        xml_.load_text(document_->get(), L"<x/>") != ports::code::ok) {
      document_->reset();
    }
  }
  if (document_->empty()) return true;
  ports::NodeOwner found(xml_);
  return xml_.select_single_node(document_->get(), base::strings::to_wide(xpath).c_str(), found.receive()) >= 0;
}

void check_xpaths(const KnownCommand& command, const KeyTraffic& traffic, XPathTrial& trial,
                  std::vector<Finding>& findings) {
  for (const KnownAttribute& attribute : command.attributes) {
    if (attribute.schema->form == host::Form::xpath) XPathCheck(attribute, traffic, trial, findings).run();
  }
}

}  // namespace check
