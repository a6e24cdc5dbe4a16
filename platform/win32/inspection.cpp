#include "platform/win32/inspection.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>

#include "platform/win32/handles.h"
#include "platform/win32/native_api.h"

namespace win32 {

namespace {

static_assert(sizeof(PROCESSENTRY32W) == 568);
static_assert(sizeof(ProcessBasicInformation) == ports::process_basic_information_size);

bool read_row(decltype(Process32FirstW)* call, ports::Handle snapshot, ports::ProcessRow& row) {
  PROCESSENTRY32W found{};
  found.dwSize = sizeof found;
  if (!call(native(snapshot), &found)) return false;
  row = {found.szExeFile, found.th32ProcessID, found.th32ParentProcessID};
  return true;
}

}  // namespace

ports::Handle ProcessInspection::snapshot() {
  return ported(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
}

bool ProcessInspection::first(ports::Handle snapshot, ports::ProcessRow& row) {
  return read_row(Process32FirstW, snapshot, row);
}

bool ProcessInspection::next(ports::Handle snapshot, ports::ProcessRow& row) {
  return read_row(Process32NextW, snapshot, row);
}

ports::Handle ProcessInspection::open(std::uint32_t access, std::uint32_t id) {
  return ported(OpenProcess(access, FALSE, id));
}

ports::Handle ProcessInspection::current() {
  return ported(GetCurrentProcess());
}

bool ProcessInspection::is_wow64(ports::Handle process, bool& out) {
  BOOL wow64 = FALSE;
  if (!IsWow64Process(native(process), &wow64)) return false;
  out = wow64 != FALSE;
  return true;
}

std::uint32_t ProcessInspection::image_path(ports::Handle process, std::span<wchar_t> into) {
  return K32GetModuleFileNameExW(native(process), nullptr, into.data(), static_cast<DWORD>(into.size()));
}

std::uint32_t ProcessInspection::image_device_path(ports::Handle process, std::span<wchar_t> into) {
  return K32GetProcessImageFileNameW(native(process), into.data(), static_cast<DWORD>(into.size()));
}

ports::Status ProcessInspection::basic_information(ports::Handle process, ports::ProcessBasicInformation& out,
                                                   std::uint32_t& returned) {
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  const auto query = reinterpret_cast<QueryInformationProcess>(
      reinterpret_cast<void (*)()>(GetProcAddress(ntdll, query_information_process)));
  if (query == nullptr) return ports::status::entry_point_not_found;
  ProcessBasicInformation found{};
  ULONG size = 0;
  const LONG result = query(native(process), process_basic_information, &found, sizeof found, &size);
  returned = size;
  out = {found.exit_status, reinterpret_cast<std::uintptr_t>(found.environment_block),
         found.affinity,    found.base_priority,
         found.id,          found.parent_id};
  return result;
}

bool ProcessInspection::read_memory(ports::Handle process, std::uint64_t address, std::span<std::uint8_t> into) {
  return ReadProcessMemory(native(process), reinterpret_cast<const void*>(address), into.data(), into.size(),
                           nullptr) != FALSE;
}

}  // namespace win32
