#pragma once

#include "platform/ports/text.h"

namespace win32 {

class CodePages final : public ports::CodePages {
 public:
  std::int32_t to_wide(std::uint32_t code_page, std::uint32_t flags, const char* source, std::int32_t source_length,
                       wchar_t* destination, std::int32_t destination_length) override;
  std::int32_t to_narrow(std::uint32_t code_page, std::uint32_t flags, const wchar_t* source,
                         std::int32_t source_length, char* destination, std::int32_t destination_length) override;
  std::string system_message(ports::ErrorCode code) override;
};

}  // namespace win32
