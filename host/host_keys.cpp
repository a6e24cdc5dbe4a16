#include "host/host_keys.h"

#include "host/store.h"
#include "ky/keys.h"
#include "platform/ports/environment.h"
#include "platform/ports/modules.h"
#include "platform/ports/threads.h"

namespace host {

namespace {

template <class T>
void put(Store& store, ky::Key<T> key, T value) {
  store.put(key.name, ky::ToStored(value));
}

void put_text(Store& store, ky::Key<ky::CString*> key, std::wstring_view text) {
  put(store, key, new ky::CString(text));
}

struct PathKey {
  ky::Key<ky::CString*> key;
  ports::KnownFolder folder;
  const char* name;
};
constexpr PathKey path_keys[] = {
    {ky::keys::String_SystemPath, ports::KnownFolder::system, "system"},
    {ky::keys::String_WindowsPath, ports::KnownFolder::windows, "Windows"},
    {ky::keys::String_ProgramFilesPath, ports::KnownFolder::program_files, "Program Files"},
};

/// Both reset by hand: who signals them resets them, and every thread that waits then sees them.
bool put_event(const ports::System& system, Store& store, ky::Key<ky::EventHandle> key) {
  const ports::Handle event = system.waits.create_event(true, false, nullptr);
  if (event == ports::Handle::null) return false;
  put(store, key, static_cast<ky::EventHandle>(event));
  return true;
}

std::string put_paths(const ports::System& system, Store& store) {
  for (const PathKey& path : path_keys) {
    const std::wstring folder = system.environment.folder(path.folder);
    if (folder.empty()) return std::string("the system does not tell its ") + path.name + " folder";
    put_text(store, path.key, with_closing_backslash(folder));
  }
  const std::wstring application = folder_of(system.modules.file_name(system.modules.main()));
  if (application.empty()) return "the system does not tell where this program lies";
  put_text(store, ky::keys::String_ApplicationPath, application);
  return {};
}

}  // namespace

std::wstring with_closing_backslash(std::wstring_view path) {
  const std::size_t last = path.find_last_not_of(L'\\');
  return std::wstring(path.substr(0, last == std::wstring_view::npos ? 0 : last + 1)) + L'\\';
}

std::wstring folder_of(std::wstring_view file) {
  const std::size_t last = file.find_last_of(L'\\');
  return last == std::wstring_view::npos ? std::wstring() : with_closing_backslash(file.substr(0, last));
}

std::string put_host_keys(const ports::System& system, ky::Decrypter* decrypter, Store& store) {
  put(store, ky::keys::SelfFree_Decrypter, decrypter);
  put_text(store, ky::keys::String_CommandLine, system.environment.command_line());
  std::string failure = put_paths(system, store);
  if (!failure.empty()) return failure;
  if (!put_event(system, store, ky::keys::HANDLE_Refresh) || !put_event(system, store, ky::keys::HANDLE_HardRefresh)) {
    return "the events that refresh the window cannot be made, error " + std::to_string(system.errors.last());
  }
  const ports::Module program = system.modules.main();
  const ports::Module library = system.own_module == ports::Module::null ? program : system.own_module;
  put(store, ky::keys::HMODULE_CurrentDll, static_cast<ky::ModuleHandle>(program));
  put(store, ky::keys::HMODULE_AdditionalDll, static_cast<ky::ModuleHandle>(library));
  put(store, ky::keys::int_RTL, std::int32_t{0});
  return {};
}

}  // namespace host
