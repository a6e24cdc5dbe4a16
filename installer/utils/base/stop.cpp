#include "installer/utils/base/stop.h"

#include <cstdlib>

#include "platform/ports/system.h"
#include "platform/ports/termination.h"

namespace base {

namespace {

[[noreturn]] void stop(ports::StopKind kind, const wchar_t* place, const std::wstring& detail) {
  ports::system().termination.stop({kind, std::wstring(place) + L": " + detail});
  std::abort();  // not reached; compilers do not see the promise through the virtual call
}

}  // namespace

void stop_invalid_parameter(const wchar_t* place, const std::wstring& detail) {
  stop(ports::StopKind::invalid_parameter, place, detail);
}

void stop_null_value(const wchar_t* place, const std::wstring& detail) {
  stop(ports::StopKind::null_value, place, detail);
}

void stop_assertion(const wchar_t* expression) {
  stop(ports::StopKind::assertion, L"assertion", expression);
}

void stop_processor_fault(const wchar_t* place, const std::wstring& detail) {
  stop(ports::StopKind::processor_fault, place, detail);
}

}  // namespace base
