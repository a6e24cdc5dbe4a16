#pragma once

#include <string>

namespace base {

/// The one door through which the logic stops the process. `place` is where, in a stable form that docs/stops.md lists;
/// `detail` is what was found there. Nothing unwinds.
[[noreturn]] void stop_invalid_parameter(const wchar_t* place, const std::wstring& detail);
[[noreturn]] void stop_null_value(const wchar_t* place, const std::wstring& detail);
[[noreturn]] void stop_assertion(const wchar_t* expression);
[[noreturn]] void stop_processor_fault(const wchar_t* place, const std::wstring& detail);

}  // namespace base
