#include "diagnostics/reader/unscrambler.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>

#include "installer/utils/base/strings/utf8.h"

namespace diagnostics::reader {

namespace {

constexpr wchar_t lost = 0xFFFD;

bool is_high_surrogate(wchar_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool is_low_surrogate(wchar_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

int ascii_readability(wchar_t unit) {
  if (unit == L' ') return 3;
  if (unit >= L'a' && unit <= L'z') return 2;
  if ((unit >= L'A' && unit <= L'Z') || (unit >= L'0' && unit <= L'9')) return 1;
  if (unit == L'\t' || unit == L'\r' || unit == L'\n' || unit == L'.' || unit == L'\\') return 1;
  return unit < 0x20 || unit >= 0x7F ? -8 : -1;
}

/// Where a unit beyond Latin 1 belongs, so that neighbours can be compared.
enum class Script { none, european, asian, odd };

Script script_of(wchar_t unit) {
  if (unit >= 0xE000 && unit <= 0xF8FF) return Script::odd;
  if (unit >= 0x0100 && unit <= 0x06FF) return Script::european;
  if ((unit >= 0x3000 && unit <= 0x9FFF) || (unit >= 0xAC00 && unit <= 0xD7A3)) return Script::asian;
  return Script::none;
}

/// The steps that a lost character may have moved the key index, and what taking each costs: two is what nearly every
/// character spends. Ill-formed bytes may stand for anything.
struct Step {
  std::size_t keys;
  int cost;
};
constexpr Step replaced[] = {{2, 0}, {1, 6}};
constexpr Step damaged[] = {{2, 0}, {1, 0}, {0, 1}, {3, 2}, {4, 2}};

/// A way that is so much worse than the best one is given up.
constexpr int hopeless = 80;
/// More losses than that in one record are no text any more.
constexpr std::size_t max_runs = 10'000;

}  // namespace

int readability(std::wstring_view text) {
  int score = 0;
  Script before = Script::none;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const wchar_t unit = text[at];
    if (unit < 0xA0) {
      score += ascii_readability(unit);
    } else if (is_high_surrogate(unit) && at + 1 < text.size() && is_low_surrogate(text[at + 1])) {
      ++at;
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      score -= 25;
    } else {
      const Script script = script_of(unit);
      score += script == Script::odd ? -4 : script == Script::none ? 0 : script == before ? 2 : 1;
      before = script;
    }
  }
  return score;
}

/// The characters between two lost ones.
struct Unscrambler::Run {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t spent = 0;  // key bytes, from whatever index it begins
};

void Unscrambler::walk(std::wstring& units, std::size_t begin, std::size_t end, std::size_t& index) const {
  const auto turn = [&](std::uint32_t byte) -> std::uint32_t {
    if (byte == 0) return 0;
    const std::uint32_t plain = byte ^ key_[index];
    if (++index == key_.size()) index = 0;
    return plain == 0 || plain == '\n' ? byte : plain;
  };
  for (std::size_t at = begin; at < end; ++at) {
    const auto unit = static_cast<std::uint32_t>(units[at]);
    const std::uint32_t low = turn(unit & 0xFF);
    units[at] = static_cast<wchar_t>(low | turn(unit >> 8) << 8);
  }
}

std::wstring Unscrambler::walked(const std::wstring& units, const Run& run, std::size_t index) const {
  std::wstring text = units.substr(run.begin, run.end - run.begin);
  walk(text, 0, text.size(), index);
  return text;
}

void Unscrambler::turn_back(std::string_view utf8, std::wstring& out) const {
  base::strings::to_wide(utf8, out);
  if (out.find(lost) != std::wstring::npos) {
    walk_with_losses(out, !base::strings::is_utf8(utf8));
    return;
  }
  std::size_t index = 0;
  walk(out, 0, out.size(), index);
}

/// The best way so far to a run with a certain key index.
struct Unscrambler::Way {
  int score = 0;
  std::uint32_t from = 0;  // the key index that the run before began with
};

/// What lies between the lost characters.
std::vector<Unscrambler::Run> Unscrambler::runs_of(const std::wstring& units) {
  std::vector<Run> runs{{}};
  for (std::size_t at = 0; at < units.size(); ++at) {
    if (units[at] == lost && runs.size() < max_runs) {
      runs.push_back({at + 1, at + 1, 0});
    } else {
      runs.back().end = at + 1;
      runs.back().spent += ((units[at] & 0xFF) != 0 ? 1U : 0U) + (units[at] > 0xFF ? 1U : 0U);
    }
  }
  return runs;
}

/// From the ways to one run, those to the next: for each key index the best.
Unscrambler::Ways Unscrambler::follow(const std::wstring& units, const Run& run, const Run& next, const Ways& ways,
                                      bool ill_formed) const {
  const std::span<const Step> steps = ill_formed ? std::span<const Step>(damaged) : std::span<const Step>(replaced);
  Ways result(key_.size());
  std::vector<std::optional<int>> scores(key_.size());
  int best = std::numeric_limits<int>::min();
  for (std::size_t from = 0; from < ways.size(); ++from) {
    for (const Step& step : steps) {
      if (!ways[from]) break;
      const std::size_t index = (from + run.spent + step.keys) % key_.size();
      if (!scores[index]) scores[index] = readability(walked(units, next, index));
      const Way way{ways[from]->score - step.cost + *scores[index], static_cast<std::uint32_t>(from)};
      if (!result[index] || way.score > result[index]->score) result[index] = way;
      best = std::max(best, way.score);
    }
  }
  for (std::optional<Way>& way : result) {
    if (way && way->score < best - hopeless) way.reset();
  }
  return result;
}

/// Finds the best way through the lost characters.
void Unscrambler::walk_with_losses(std::wstring& units, bool ill_formed) const {
  const std::vector<Run> runs = runs_of(units);
  std::vector<Ways> ways{Ways(key_.size())};
  ways[0][0] = Way{};
  for (std::size_t n = 1; n < runs.size(); ++n) {
    ways.push_back(follow(units, runs[n - 1], runs[n], ways.back(), ill_formed));
  }
  std::size_t index = 0;
  for (std::size_t i = 1; i < key_.size(); ++i) {
    const std::optional<Way>& way = ways.back()[i];
    const std::optional<Way>& best = ways.back()[index];
    if (way && (!best || way->score > best->score)) index = i;
  }
  for (std::size_t n = runs.size(); n-- > 0;) {
    const std::size_t from = ways[n][index]->from;
    walk(units, runs[n].begin, runs[n].end, index);
    index = from;
  }
}

std::string Unscrambler::scramble(std::string_view ascii) const {
  std::string out(ascii);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const int byte = static_cast<unsigned char>(out[i]) ^ key_[i % key_.size()];
    if (byte != '\n' && byte != 0) out[i] = static_cast<char>(byte);
  }
  return out;
}

}  // namespace diagnostics::reader
