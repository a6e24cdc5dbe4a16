#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/machine/running.h"
#include "platform/ports/environment.h"

namespace rehearsal {

/// An environment whose command line is the inner one's program followed by `switches`.
class SwitchedEnvironment final : public ports::Environment {
 public:
  SwitchedEnvironment(ports::Environment& inner, std::vector<std::string> switches)
      : inner_(inner), switches_(std::move(switches)) {}

  std::wstring folder(ports::KnownFolder which) override { return inner_.folder(which); }
  std::wstring command_line() override;
  std::uint32_t dos_device(const wchar_t* name, std::span<wchar_t> into) override {
    return inner_.dos_device(name, into);
  }

 private:
  ports::Environment& inner_;
  std::vector<std::string> switches_;
};

/// The program part of a command line, quotes included: up to the closing quote, or up to the first blank.
[[nodiscard]] std::wstring program_part(const std::wstring& command_line);

/// `argument` as it stands in a command line: in quotes where it holds a blank or is empty.
[[nodiscard]] std::wstring quoted(const std::wstring& argument);

/// The parent process with that command line; where there is none, one that runs the line's program.
[[nodiscard]] machine::RunningProgram with_line(const std::optional<machine::RunningProgram>& parent,
                                                const std::wstring& line);

}  // namespace rehearsal
