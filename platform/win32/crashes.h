#pragma once

#include "platform/ports/crashes.h"

namespace win32 {

/// The process's handlers for faults.
class Crashes final : public ports::Crashes {
 public:
  bool set_filter(ports::CrashFilter& filter) override;
  bool set_invalid_parameter_handler() override;
  bool write_dump(ports::Handle file, ports::DumpKind kind, ports::ExceptionPointers* exception) override;
};

}  // namespace win32
