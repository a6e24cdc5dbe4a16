#include "tools/ky/check/allowances.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "tools/ky/script/element_check.h"

namespace check {

namespace {

constexpr std::string_view space = " \t\r\n";

/// Cuts the first word off `text`; empty where there is none.
std::string_view take_word(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(space), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(space));
  text.remove_prefix(word.size());
  return word;
}

/// The comments before one element.
class Allowances {
 public:
  explicit Allowances(const std::vector<script::PlainComment>& comments) {
    for (const script::PlainComment& comment : comments) read(comment);
  }

  [[nodiscard]] bool cover(std::string_view rule) {
    bool covered = false;
    for (Allowed& allowed : allowed_) {
      if (allowed.rule != rule) continue;
      covered = allowed.used = true;
    }
    return covered;
  }

  void tell_idle(bool told_all, std::vector<Finding>& findings) const {
    for (const Allowed& allowed : allowed_) {
      if (find_rule(allowed.rule) == nullptr) {
        findings.push_back({allowed.at, rule::idle_allowance, script::quoted(allowed.rule) + " is not a rule"});
      } else if (!allowed.used && told_all) {
        findings.push_back({allowed.at, rule::idle_allowance,
                            script::quoted(allowed.rule) + " is allowed, and the element does not offend against it"});
      }
    }
  }

 private:
  struct Allowed {
    std::string_view rule;
    script::Position at;
    bool used = false;
  };

  void read(const script::PlainComment& comment) {
    std::string_view text = comment.text;
    if (take_word(text) != "check:") return;
    if (take_word(text) != "allow") {
      allowed_.push_back({"", comment.at, false});
      return;
    }
    bool more = true;
    while (more) {
      std::string_view name = take_word(text);
      more = !name.empty() && !name.ends_with(':');
      if (name.ends_with(':')) name.remove_suffix(1);
      if (!name.empty()) allowed_.push_back({name, comment.at, false});
    }
  }

  std::vector<Allowed> allowed_;
};

}  // namespace

std::vector<Finding> without_allowed(const script::PlainScript& script, std::vector<Finding> findings, bool told_all) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) { return a.at < b.at; });
  std::vector<Finding> left;
  auto finding = findings.begin();
  for (std::size_t i = 0; i < script.elements.size(); ++i) {
    const auto end = i + 1 == script.elements.size() ? findings.end()
                                                     : std::find_if(finding, findings.end(), [&](const Finding& each) {
                                                         return each.at >= script.elements[i + 1].at;
                                                       });
    Allowances allowances(script.elements[i].comments);
    for (; finding != end; ++finding) {
      if (!allowances.cover(finding->rule)) left.push_back(std::move(*finding));
    }
    allowances.tell_idle(told_all, left);
  }
  return left;
}

}  // namespace check
