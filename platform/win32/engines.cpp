#include "platform/ports/build.h"
#include "platform/win32/cng.h"
#include "platform/win32/key_maker.h"
#include "platform/win32/script_cipher.h"
#include "platform/win32/xml.h"

namespace win32 {

namespace {

class Engines final : public ports::Engines {
 public:
  explicit Engines(ports::Errors& errors) : cipher_(errors), key_maker_(errors) {}

  ports::ScriptCipher& cipher() override { return cipher_; }
  ports::KeyMaker& key_maker() override { return key_maker_; }
  ports::Xml& xml() override { return xml_; }
  ports::Cng& cng() override { return cng_; }

 private:
  ScriptCipher cipher_;
  KeyMaker key_maker_;
  Xml xml_;
  Cng cng_;
};

}  // namespace

}  // namespace win32

std::unique_ptr<ports::Engines> ports::make_engines(Errors& errors) {
  return std::make_unique<win32::Engines>(errors);
}
