#pragma once

#include "platform/ports/text.h"

namespace ports {
class Errors;
}

namespace machine {

/// UTF-8 and the machine's code page, which is 1252.
class CodePages final : public ports::CodePages {
 public:
  explicit CodePages(ports::Errors& errors) : errors_(errors) {}

  [[nodiscard]] std::int32_t to_wide(std::uint32_t code_page, std::uint32_t flags, const char* source,
                                     std::int32_t source_length, wchar_t* destination,
                                     std::int32_t destination_length) override;
  [[nodiscard]] std::int32_t to_narrow(std::uint32_t code_page, std::uint32_t flags, const wchar_t* source,
                                       std::int32_t source_length, char* destination,
                                       std::int32_t destination_length) override;
  /// Those of an English Windows, as far as the machine answers with their codes.
  [[nodiscard]] std::string system_message(ports::ErrorCode code) override;

 private:
  ports::Errors& errors_;
};

}  // namespace machine
