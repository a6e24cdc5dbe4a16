#pragma once

#include <windows.h>

/// System calls that the toolchain's headers do not declare, each with its type, all in this one place.

extern "C" {

/// ntdll: deletes the key that the handle stands for, a registry link itself. Gives an NTSTATUS.
NTSYSAPI LONG NTAPI NtDeleteKey(HANDLE key);

/// ntdll: the Windows code of an NTSTATUS.
NTSYSAPI ULONG NTAPI RtlNtStatusToDosError(LONG status);
}

namespace win32 {

/// MSXML 6: {88D96A05-F192-11D4-A65F-0040963251E5}.
inline constexpr CLSID dom_document_60 = {0x88d96a05, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};
/// IXMLDOMDocument: {2933BF81-7B36-11D2-B20E-00C04F983E60}.
inline constexpr IID iid_dom_document = {0x2933bf81, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

}  // namespace win32
