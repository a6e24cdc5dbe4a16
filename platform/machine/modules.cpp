#include "platform/machine/modules.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/machine/images.h"
#include "platform/machine/path.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace machine {

namespace code = ports::code;
using ports::Module;

namespace {

constexpr std::uintptr_t loaded_base = 0x200000000;
constexpr std::uintptr_t loaded_distance = 0x10000;
constexpr std::wstring_view library_name = L"kycommands.dll";

}  // namespace

void Modules::add_procedure(Module module, std::string name, ports::Procedure what) {
  const ports::Lock lock(world_.mutex);
  procedures_.insert_or_assign({module, std::move(name)}, what);
}

ports::Procedure Modules::procedure(Module module, const char* name) {
  const ports::Lock lock(world_.mutex);
  const auto found = procedures_.find({module, name == nullptr ? "" : name});
  if (found != procedures_.end()) return found->second;
  errors_.set_last(code::procedure_not_found);
  return nullptr;
}

Module Modules::load(const wchar_t* path, std::uint32_t /*flags*/) {
  const ports::Lock lock(world_.mutex);
  State& state = world_.state;
  std::wstring name = path == nullptr ? L"" : path;
  if (last_part(name).find(L'.') == std::wstring_view::npos) name += L".dll";
  const Image image = find_file(state, name);
  if (image.error != code::success) {
    errors_.set_last(code::module_not_found);
    return Module::null;
  }
  FileNode& node = state.files.nodes.at(image.node);
  const bool good = node.bytes.empty() ? node.size > 0 : node.bytes[0] == 'M';
  if (!good) {
    errors_.set_last(code::bad_exe_format);
    return Module::null;
  }
  const Module module{loaded_base + loaded_distance * static_cast<std::uintptr_t>(image.node)};
  Loaded& loaded = loaded_[module];
  if (loaded.uses++ == 0) ++node.images;
  loaded.node = image.node;
  loaded.path = image.path;
  return module;
}

bool Modules::free(Module module) {
  const ports::Lock lock(world_.mutex);
  if (module == program || module == library) return true;
  const auto found = loaded_.find(module);
  if (found == loaded_.end()) {
    errors_.set_last(code::module_not_found);
    return false;
  }
  if (--found->second.uses > 0) return true;
  const auto node = world_.state.files.nodes.find(found->second.node);
  if (node != world_.state.files.nodes.end()) --node->second.images;
  loaded_.erase(found);
  return true;
}

std::wstring Modules::file_name(Module module) {
  const ports::Lock lock(world_.mutex);
  const std::wstring& own = world_.state.environment.program;
  if (module == program || module == Module::null) return own;
  if (module == library) return own.substr(0, own.size() - last_part(own).size()).append(library_name);
  const auto found = loaded_.find(module);
  if (found != loaded_.end()) return found->second.path;
  errors_.set_last(code::module_not_found);
  return {};
}

}  // namespace machine
