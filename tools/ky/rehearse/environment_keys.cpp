#include "tools/ky/rehearse/environment_keys.h"

#include <algorithm>
#include <vector>

#include "ky/keys.h"

namespace rehearsal {

namespace {

const char* const given_by_the_place[] = {
    ky::keys::String_CommandLine.name, ky::keys::String_ParrentCommandLine.name, ky::keys::String_SystemPath.name,
    ky::keys::String_WindowsPath.name, ky::keys::String_ProgramFilesPath.name,   ky::keys::String_ApplicationPath.name,
};

}  // namespace

std::set<std::string> environment_keys(const std::map<std::string, GlobalValue>& globals) {
  std::set<std::string> names;
  std::vector<std::wstring> texts;
  for (const char* const name : given_by_the_place) {
    const auto found = globals.find(name);
    if (found == globals.end()) continue;
    names.insert(name);
    const auto* const text = std::get_if<std::wstring>(&found->second);
    if (text != nullptr && !text->empty()) texts.push_back(*text);
  }
  for (const auto& [name, held] : globals) {
    const auto* const text = std::get_if<std::wstring>(&held);
    if (text == nullptr) continue;
    const bool derived = std::any_of(texts.begin(), texts.end(), [text](const std::wstring& given) {
      return text->find(given) != std::wstring::npos;
    });
    if (derived) names.insert(name);
  }
  return names;
}

}  // namespace rehearsal
