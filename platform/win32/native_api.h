#pragma once

#include <windows.h>

#include <wintrust.h>

/// System calls and structures that the toolchain's headers do not declare, or not whole, each with its type, all in
/// this one place.

namespace win32 {

/// IO_STATUS_BLOCK.
struct IoStatusBlock {
  union {
    LONG status;
    void* pointer;
  };
  ULONG_PTR information;
};
static_assert(sizeof(IoStatusBlock) == 16);

}  // namespace win32

extern "C" {

/// ntdll: deletes the key that the handle stands for, a registry link itself. Gives an NTSTATUS.
NTSYSAPI LONG NTAPI NtDeleteKey(HANDLE key);

/// ntdll: tells something of an open file, by class. Gives an NTSTATUS.
NTSYSAPI LONG NTAPI NtQueryInformationFile(HANDLE file, win32::IoStatusBlock* result, void* into, ULONG size,
                                           ULONG information_class);

/// ntdll: the Windows code of an NTSTATUS.
NTSYSAPI ULONG NTAPI RtlNtStatusToDosError(LONG status);
}

namespace win32 {

/// NtQueryInformationFile's FileCaseSensitiveInformation: 4 bytes of flags.
inline constexpr ULONG file_case_sensitive_information = 71;

/// NtQueryInformationProcess, which is documented as one that may go: it is looked up in ntdll by name.
using QueryInformationProcess = LONG(NTAPI*)(HANDLE process, ULONG information_class, void* into, ULONG size,
                                             ULONG* returned);
inline constexpr char query_information_process[] = "NtQueryInformationProcess";
inline constexpr ULONG process_basic_information = 0;

/// PROCESS_BASIC_INFORMATION of a 64-bit system.
struct ProcessBasicInformation {
  LONG exit_status;
  void* environment_block;
  ULONG_PTR affinity;
  LONG base_priority;
  ULONG_PTR id;
  ULONG_PTR parent_id;
};
static_assert(sizeof(ProcessBasicInformation) == 48);

/// WINTRUST_DATA of today; the toolchain's lacks the last member.
struct TrustData : WINTRUST_DATA {
  void* signature_settings;
};
static_assert(sizeof(TrustData) == 88 && sizeof(WINTRUST_FILE_INFO) == 32);

/// MSXML 6: {88D96A05-F192-11D4-A65F-0040963251E5}.
inline constexpr CLSID dom_document_60 = {0x88d96a05, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};
/// IXMLDOMDocument: {2933BF81-7B36-11D2-B20E-00C04F983E60}.
inline constexpr IID iid_dom_document = {0x2933bf81, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

}  // namespace win32
