#include "installer/desktop/commands/data/commandlineswitches.h"

#include <algorithm>

namespace ky {

namespace {

constexpr std::wstring_view white_space = L" \t\n\v\f\r";
constexpr std::wstring_view pixel_url = L"/pixel_url=";

/// Puts pieces together; what stands at the end of the line has no space of its own.
class Pieces {
 public:
  void Append(std::wstring_view piece, std::wstring_view behind) {
    if (owes_space_) text_ += L' ';
    owes_space_ = false;
    text_.append(piece).append(behind);
  }
  void AppendLineEnd(std::wstring_view piece) {
    Append(piece, L"");
    owes_space_ = true;
  }
  [[nodiscard]] std::wstring Stripped() const {
    const std::size_t first = text_.find_first_not_of(white_space);
    if (first == std::wstring::npos) return {};
    return text_.substr(first, text_.find_last_not_of(white_space) + 1 - first);
  }

 private:
  std::wstring text_;
  bool owes_space_ = false;
};

void AppendValue(std::wstring_view line, std::wstring_view name, Pieces& out) {
  const std::size_t begin = line.find(name);
  if (begin == std::wstring_view::npos) return;
  const std::size_t value = begin + name.size();
  if (value < line.size() && line[value] == L'"') {
    const std::size_t quote = line.find(L'"', value + 1);
    if (quote != std::wstring_view::npos) out.Append(line.substr(begin, quote + 1 - begin), L"");
    return;
  }
  const std::size_t space = line.find(L' ', value);
  if (space == std::wstring_view::npos) return out.AppendLineEnd(line.substr(begin));
  out.Append(line.substr(begin, space - begin), L" ");
}

}  // namespace

KnownParameters SplitKnownParameters(std::wstring_view list) {
  KnownParameters known;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(L' ', begin), list.size());
    const std::wstring_view item = list.substr(begin, end - begin);
    const bool has_value = item.ends_with(L'=') || item.ends_with(L':');
    (has_value ? known.values : known.flags).emplace(item);
    begin = end + 1;
  }
  return known;
}

std::wstring SanitizeCommandLine(std::wstring_view line, const KnownParameters& known) try {
  Pieces pieces;
  for (const std::wstring& flag : known.flags) {
    if (line.find(flag) != std::wstring_view::npos) pieces.Append(flag, L" ");
  }
  for (const std::wstring& name : known.values) AppendValue(line, name, pieces);
  return pieces.Stripped();
} catch (...) {
  return {};
}

std::optional<std::wstring_view> PixelUrlOf(std::wstring_view line) {
  const std::size_t begin = line.find(pixel_url);
  if (begin == std::wstring_view::npos) return std::nullopt;
  line.remove_prefix(begin + pixel_url.size());
  return line.substr(0, line.find(L' '));
}

}  // namespace ky
