#include "platform/ports/build.h"

#include "platform/native/cng.h"
#include "platform/native/pugi_xml.h"
#include "platform/native/script_cipher.h"

namespace ports {

namespace {

class NativeEngines final : public Engines {
 public:
  explicit NativeEngines(Errors& errors) : cipher_(errors) {}
  ScriptCipher& cipher() override { return cipher_; }
  KeyMaker& key_maker() override { return key_maker_; }
  Xml& xml() override { return xml_; }
  Cng& cng() override { return cng_; }

 private:
  native::OpensslCipher cipher_;
  native::OpensslKeyMaker key_maker_;
  native::PugiXml xml_;
  native::OpensslCng cng_;
};

}  // namespace

std::unique_ptr<Engines> make_engines(Errors& errors) {
  return std::make_unique<NativeEngines>(errors);
}

// This build knows no world but the machine.
const System* real_system(Module) {
  return nullptr;
}

}  // namespace ports
