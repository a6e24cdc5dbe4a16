#include "platform/win32/modules.h"

#include <windows.h>

#include "platform/win32/handles.h"

namespace win32 {

ports::Module Modules::main() {
  return ported(GetModuleHandleW(nullptr));
}

ports::Procedure Modules::procedure(ports::Module module, const char* name) {
  return reinterpret_cast<ports::Procedure>(GetProcAddress(native(module), name));
}

ports::Module Modules::load(const wchar_t* path, std::uint32_t flags) {
  return ported(LoadLibraryExW(path, nullptr, flags));
}

bool Modules::free(ports::Module module) {
  return FreeLibrary(native(module)) != FALSE;
}

std::wstring Modules::file_name(ports::Module module) {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(native(module), path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) return path.substr(0, length);
    path.resize(path.size() * 2);
  }
}

namespace {

HRSRC native(ports::ResourcePlace place) {
  return reinterpret_cast<HRSRC>(place);
}

}  // namespace

ports::ResourcePlace Resources::find(ports::Module module, std::uint16_t id, const wchar_t* type) {
  const HRSRC found = FindResourceW(native(module), MAKEINTRESOURCEW(id), type);
  return static_cast<ports::ResourcePlace>(reinterpret_cast<std::uintptr_t>(found));
}

ports::ResourceData Resources::load(ports::Module module, ports::ResourcePlace place) {
  const HGLOBAL data = LoadResource(native(module), native(place));
  return static_cast<ports::ResourceData>(reinterpret_cast<std::uintptr_t>(data));
}

std::uint32_t Resources::size(ports::Module module, ports::ResourcePlace place) {
  return SizeofResource(native(module), native(place));
}

const std::uint8_t* Resources::lock(ports::ResourceData data) {
  return static_cast<const std::uint8_t*>(LockResource(reinterpret_cast<HGLOBAL>(data)));
}

}  // namespace win32
