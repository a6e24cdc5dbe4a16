#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/ports/types.h"

namespace ports {

/// An exported function of unknown type.
using Procedure = void (*)();

/// Where a resource stands in its module, and its loaded form.
enum class ResourcePlace : std::uintptr_t { null = 0 };
enum class ResourceData : std::uintptr_t { null = 0 };

namespace load_flag {
inline constexpr std::uint32_t search_system = 0x800;
}  // namespace load_flag

/// Loaded modules. Any thread; failure leaves its code in the last error.
class Modules {
 public:
  virtual ~Modules() = default;

  /// GetModuleHandleW of null: the program itself. Cannot fail.
  [[nodiscard]] virtual Module main() = 0;

  /// GetProcAddress by name. Null on failure: procedure_not_found.
  [[nodiscard]] virtual Procedure procedure(Module module, const char* name) = 0;

  /// LoadLibraryExW. Null on failure: module_not_found, bad_exe_format, dll_init_failed.
  [[nodiscard]] virtual Module load(const wchar_t* path, std::uint32_t flags) = 0;

  /// FreeLibrary.
  virtual bool free(Module module) = 0;

  /// GetModuleFileNameW: the module's full path, empty on failure.
  [[nodiscard]] virtual std::wstring file_name(Module module) = 0;
};

/// Resources of a module. Any thread; failure leaves its code in the last error.
class Resources {
 public:
  virtual ~Resources() = default;

  /// FindResourceW by number and type name. Null on failure: resource_type_not_found or resource_name_not_found.
  [[nodiscard]] virtual ResourcePlace find(Module module, std::uint16_t id, const wchar_t* type) = 0;

  /// LoadResource. Null on failure.
  [[nodiscard]] virtual ResourceData load(Module module, ResourcePlace place) = 0;

  /// SizeofResource, in bytes; 0 on failure.
  [[nodiscard]] virtual std::uint32_t size(Module module, ResourcePlace place) = 0;

  /// LockResource: the bytes, valid while the module is loaded; null on failure.
  [[nodiscard]] virtual const std::uint8_t* lock(ResourceData data) = 0;
};

}  // namespace ports
