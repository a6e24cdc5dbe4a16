#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "ky/self_free.h"

namespace ky {

class Decrypter;
class IErrorApi;
class ILoggerApi;

/// The host's two exports: the store of named 64-bit values. A key that was never put reads as 0; `Put` of 0 empties it
/// and `Put` never touches the value that was there.
using GetFunction = std::uint64_t (*)(const char* key);
using PutFunction = void (*)(const char* key, std::uint64_t value);
inline constexpr char get_export[] = "Get";
inline constexpr char put_export[] = "Put";

/// A system event held by the store; the library never closes it.
enum class EventHandle : std::uintptr_t { null = 0 };
/// A loaded module held by the store; the library never unloads it.
enum class ModuleHandle : std::uintptr_t { null = 0 };

// clang-format off
/// Every key with a fixed name: KEY(name, type of the value, written by, meaning). Spellings are the keys' own.
#define KY_KEYS(KEY) \
  KEY(int_ReturnCode, std::int32_t, "commands, host", "the code the process is to end with") \
  KEY(int_Silent, std::int32_t, "CommandLineParser", "no user interface") \
  KEY(int_x64, std::int32_t, "ArchitectureCheck", "64-bit registry view wanted") \
  KEY(int_x86, std::int32_t, "ArchitectureCheck", "32-bit system") \
  KEY(int_Force, std::int32_t, "CommandLineParser", "switch: force") \
  KEY(int_KeepSettings, std::int32_t, "CommandLineParser", "switch: keep settings") \
  KEY(int_SkipKyagent, std::int32_t, "CommandLineParser", "switch: leave the agent alone") \
  KEY(int_RunKyagent, std::int32_t, "CommandLineParser", "switch: run the agent") \
  KEY(int_OnlyProgress, std::int32_t, "CommandLineParser", "switch: progress only") \
  KEY(int_RunUninstall, std::int32_t, "CommandLineParser", "switch: uninstall") \
  KEY(int_RunUpdate, std::int32_t, "CommandLineParser", "switch: update") \
  KEY(int_RunRepair, std::int32_t, "CommandLineParser", "switch: repair") \
  KEY(int_IsUpgrade, std::int32_t, "CommandLineParser", "switch: upgrade") \
  KEY(int_AttachWindow, std::int32_t, "CommandLineParser", "window attaches to a running one") \
  KEY(int_RTL, std::int32_t, "host", "right-to-left language") \
  KEY(int_UninstallFailed, std::int32_t, "StopSFCommand, host or script", "the run failed") \
  KEY(int_UninstallCanceled, std::int32_t, "welcome step", "the user cancelled") \
  KEY(int_CurrentProgressValue, std::int32_t, "host or script", "progress position") \
  KEY(int_MaxProgressValue, std::int32_t, "host or script", "progress maximum") \
  KEY(String_Arhitecture, CString*, "ArchitectureCheck", "architecture tag") \
  KEY(String_AltArhitecture, CString*, "ArchitectureCheck", "second architecture tag") \
  KEY(String_CommandLine, CString*, "host, CommandLineParser", "the process's command line") \
  KEY(String_ParrentCommandLine, CString*, "CommandLineParser", "the parent process's command line") \
  KEY(String_PixelUrlParam, CString*, "CommandLineParser", "value of the pixel URL option") \
  KEY(String_SystemPath, CString*, "host", "system directory") \
  KEY(String_WindowsPath, CString*, "host", "Windows directory") \
  KEY(String_ProgramFilesPath, CString*, "host", "program files directory") \
  KEY(String_ApplicationPath, CString*, "host", "directory of the running installer") \
  KEY(String_InstallPath, CString*, "host or script", "installation directory") \
  KEY(String_AgentPath, CString*, "host or script", "agent directory") \
  KEY(String_DefaultLanguage, CString*, "host or script", "language tag") \
  KEY(String_InstallItemsXml, CString*, "host or script", "document that GetStringFromXml reads by default") \
  KEY(String_IfeoExecutables, CString*, "host or script", "executables whose debugger keys are removed") \
  KEY(SelfFree_Decrypter, Decrypter*, "host", "deciphers the script's values") \
  KEY(SelfFree_LoggerApi, ILoggerApi*, "Logger", "the run's log") \
  KEY(SelfFree_ErrorApi, IErrorApi*, "Logger", "the run's error text") \
  KEY(SelfFree_ResourceManager, CSelfFree*, "KyConfigureResourceManager", "localised strings and modules") \
  KEY(SelfFree_UIThread, CSelfFree*, "ChangeWindowStep", "the wizard's thread") \
  KEY(SelfFree_SciterRefresher, CSelfFree*, "window manager", "tells observers of changed keys") \
  KEY(SelfFree_MsgbusBuilder, CSelfFree*, "LegacyInitMsgbusCommand", "message bus builder") \
  KEY(MessageBox, CSelfFree*, "KyMessageBox, host", "asks the user") \
  KEY(WindowManager, CSelfFree*, "UIThread", "the wizard's window") \
  KEY(HANDLE_SingleInstance, EventHandle, "ForceSingleInstance", "marks the running instance") \
  KEY(HANDLE_Refresh, EventHandle, "host", "refresh") \
  KEY(HANDLE_HardRefresh, EventHandle, "host", "full refresh") \
  KEY(HMODULE_CurrentDll, ModuleHandle, "host", "a module searched for resources") \
  KEY(HMODULE_AdditionalDll, ModuleHandle, "host", "this library's handle") \
  KEY(HMODULE_LangDll, ModuleHandle, "host", "language module") \
  KEY(HMODULE_ResourceDll, ModuleHandle, "KyConfigureResourceManager", "resource module")
// clang-format on

/// A key of fixed name whose value has type `T`.
template <class T>
struct Key {
  const char* name;
};

/// A key whose name a script gives: the prefix of `T` and the name.
template <class T>
struct NamedKey {
  std::string name;
};

inline constexpr std::string_view int_prefix = "int_";
inline constexpr std::string_view string_prefix = "String_";

[[nodiscard]] inline NamedKey<std::int32_t> IntKey(std::string_view name) {
  return {std::string(int_prefix).append(name)};
}
[[nodiscard]] inline NamedKey<CString*> StringKey(std::string_view name) {
  return {std::string(string_prefix).append(name)};
}

namespace keys {
#define KY_DECLARE_KEY(name, type, writer, meaning) inline constexpr Key<type> name{#name};
KY_KEYS(KY_DECLARE_KEY)
#undef KY_DECLARE_KEY
}  // namespace keys

/// How a value lies in the store's 64 bits: an integer sign-extended when written and read from the low 32 bits;
/// pointers, events and modules as they are.
template <class T>
[[nodiscard]] T FromStored(std::uint64_t stored) {
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(static_cast<std::uintptr_t>(stored));
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<T>(static_cast<std::uintptr_t>(stored));
  } else {
    static_assert(std::is_same_v<T, std::int32_t>);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(stored));
  }
}

template <class T>
[[nodiscard]] std::uint64_t ToStored(T value) {
  if constexpr (std::is_pointer_v<T>) {
    return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(value));
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<std::uint64_t>(value);
  } else {
    static_assert(std::is_same_v<T, std::int32_t>);
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  }
}

}  // namespace ky
