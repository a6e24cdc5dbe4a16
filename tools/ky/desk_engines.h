#pragma once

#include <memory>

#include "platform/ports/build.h"
#include "platform/ports/status_codes.h"

namespace workbench {

/// The build's engines for the workbench's own work, without any world around them. For one thread.
class DeskEngines {
 public:
  DeskEngines() : engines_(ports::make_engines(errors_)) {}

  [[nodiscard]] ports::Engines& engines() { return *engines_; }

 private:
  class LastError final : public ports::Errors {
   public:
    ports::ErrorCode last() override { return code_; }
    void set_last(ports::ErrorCode code) override { code_ = code; }
    ports::ErrorCode of_status(ports::Status status) override { return ports::code_of_status(status); }

   private:
    ports::ErrorCode code_ = 0;
  };

  LastError errors_;
  std::unique_ptr<ports::Engines> engines_;
};

}  // namespace workbench
