#pragma once

#include <memory>

#include "platform/ports/system.h"

namespace ports {

/// The engines of this build: MSXML, CryptoAPI and CNG, or pugixml and OpenSSL. They tell their failures to the
/// `Errors` that they were made with, so that they serve a machine as well as the real world.
class Engines {
 public:
  virtual ~Engines() = default;
  [[nodiscard]] virtual ScriptCipher& cipher() = 0;
  [[nodiscard]] virtual KeyMaker& key_maker() = 0;
  [[nodiscard]] virtual Xml& xml() = 0;
  [[nodiscard]] virtual Cng& cng() = 0;
};
[[nodiscard]] std::unique_ptr<Engines> make_engines(Errors& errors);

/// The real world of this build, which is one for the process; null where there is none.
/// `own_module` is the module whose resources hold the documents, null for the program itself.
[[nodiscard]] const System* real_system(Module own_module);

}  // namespace ports
