#include "installer/utils/base/strings/bounded.h"

#include "installer/utils/base/stop.h"

namespace base::strings {

std::wstring bounded(std::wstring text, std::size_t room, const wchar_t* place) {
  if (text.size() >= room) stop_invalid_parameter(place, text);
  return text;
}

}  // namespace base::strings
