#include "tools/ky/check/allowances.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "tools/ky/script/element_check.h"
#include "tools/ky/script/resolved_script.h"

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

struct Allowance {
  std::string_view rule;
  script::Position at;
  std::string_view until = {};  // the id of the element where it ends; empty: it is for one element
  bool ended = false;
  bool used = false;
};

/// Goes through a script's elements from front to back and knows what is allowed there.
class Allowances {
 public:
  /// Ends what was for the element before, and what goes until this one.
  void enter(const script::PlainElement& element) {
    const script::PlainAttribute* const id = element.find(script::id_attribute);
    for (Allowance& allowance : all_) {
      allowance.ended |= allowance.until.empty() || (id != nullptr && id->value == allowance.until);
    }
    keep_open();
    for (const script::PlainComment& comment : element.comments) read(comment);
  }

  [[nodiscard]] bool cover(std::string_view rule) {
    bool covered = false;
    for (Allowance& allowance : all_) {
      if (allowance.rule == rule) covered = allowance.used = true;
    }
    return covered;
  }

  /// All that were entered, when the last element is done.
  [[nodiscard]] std::vector<Allowance> finish() {
    for (Allowance& allowance : all_) allowance.ended |= allowance.until.empty() || allowance.until == script::end_id;
    closed_.insert(closed_.end(), all_.begin(), all_.end());
    return std::move(closed_);
  }

 private:
  void keep_open() {
    const auto ended =
        std::stable_partition(all_.begin(), all_.end(), [](const Allowance& allowance) { return !allowance.ended; });
    closed_.insert(closed_.end(), ended, all_.end());
    all_.erase(ended, all_.end());
  }

  void read(const script::PlainComment& comment) {
    std::string_view text = comment.text;
    if (take_word(text) != "check:") return;
    const std::size_t first = all_.size();
    if (take_word(text) != "allow") text = ":";
    // Behind a colon stands the reason.
    text = text.substr(0, text.find(':'));
    std::string_view word = take_word(text);
    for (; !word.empty() && word != "until"; word = take_word(text)) all_.push_back({word, comment.at});
    if (all_.size() == first) all_.push_back({"", comment.at});
    if (word != "until") return;
    std::string_view id = take_word(text);
    id.remove_prefix(id.starts_with('#') ? 1 : 0);
    for (std::size_t i = first; i < all_.size(); ++i) all_[i].until = id;
  }

  std::vector<Allowance> all_;
  std::vector<Allowance> closed_;
};

void tell_idle(const std::vector<Allowance>& allowances, bool told_all, std::vector<Finding>& findings) {
  for (const Allowance& allowance : allowances) {
    std::string message;
    if (find_rule(allowance.rule) == nullptr) {
      message = script::quoted(allowance.rule) + " is not a rule";
    } else if (!allowance.ended) {
      message = "no element behind it has the id " + script::quoted(allowance.until);
    } else if (!allowance.used && told_all) {
      message = script::quoted(allowance.rule) + " is allowed where nothing offends against it";
    }
    if (!message.empty()) findings.push_back({allowance.at, rule::idle_allowance, std::move(message)});
  }
}

}  // namespace

std::vector<Finding> without_allowed(const script::PlainScript& script, std::vector<Finding> findings, bool told_all) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) { return a.at < b.at; });
  std::vector<Finding> left;
  Allowances allowances;
  auto finding = findings.begin();
  for (std::size_t i = 0; i < script.elements.size(); ++i) {
    allowances.enter(script.elements[i]);
    for (; finding != findings.end(); ++finding) {
      if (i + 1 < script.elements.size() && finding->at >= script.elements[i + 1].at) break;
      if (!allowances.cover(finding->rule)) left.push_back(std::move(*finding));
    }
  }
  tell_idle(allowances.finish(), told_all, left);
  return left;
}

}  // namespace check
