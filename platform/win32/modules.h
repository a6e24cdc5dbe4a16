#pragma once

#include "platform/ports/modules.h"

namespace win32 {

class Modules final : public ports::Modules {
 public:
  ports::Module main() override;
  ports::Procedure procedure(ports::Module module, const char* name) override;
  ports::Module load(const wchar_t* path, std::uint32_t flags) override;
  bool free(ports::Module module) override;
  std::wstring file_name(ports::Module module) override;
};

class Resources final : public ports::Resources {
 public:
  ports::ResourcePlace find(ports::Module module, std::uint16_t id, const wchar_t* type) override;
  ports::ResourceData load(ports::Module module, ports::ResourcePlace place) override;
  std::uint32_t size(ports::Module module, ports::ResourcePlace place) override;
  const std::uint8_t* lock(ports::ResourceData data) override;
};

}  // namespace win32
