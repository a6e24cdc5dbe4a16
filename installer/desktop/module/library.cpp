#include "installer/desktop/module/library.h"

#include "installer/desktop/commands/base/global_data.h"
#include "ky/keys.h"

namespace ky::library {

namespace {

constexpr NamedFactory table[] = {
#define KY_TABLE_ROW(stem, command) {#stem, GetC##stem##Command},
    KY_FACTORIES(KY_TABLE_ROW)
#undef KY_TABLE_ROW
};

}  // namespace

std::span<const NamedFactory> factories() {
  return table;
}

bool attach(ports::Modules& modules) {
  const ports::Module host = modules.main();
  const ports::Procedure get = modules.procedure(host, get_export);
  const ports::Procedure put = modules.procedure(host, put_export);
  if (get == nullptr || put == nullptr) return false;
  BindStore(reinterpret_cast<GetFunction>(get), reinterpret_cast<PutFunction>(put));
  return true;
}

}  // namespace ky::library
