#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "host/commands/own_commands.h"
#include "host/session.h"
#include "installer/desktop/module/library.h"
#include "installer/utils/base/strings/utf8.h"
#include "ky/keys.h"
#include "platform/faults/faulty_system.h"
#include "platform/machine/machine.h"
#include "platform/ports/build.h"
#include "platform/ports/files.h"
#include "platform/ports/threads.h"
#include "platform/ports/xml.h"
#include "tests/support/kept_log.h"
#include "tools/ky/script/text_cipher.h"

/// One command on a machine, by default a bare one: a store with the host's keys, a log, and the command's attributes
/// enciphered as a script has them. Calls of the system fail by plan.
class CommandWorld {
 public:
  using Attributes = std::vector<std::pair<std::string, std::string>>;
  struct Loaded {
    host::CommandOwner command;
    std::uint32_t result = 0;  // of LoadCiphered
  };

  explicit CommandWorld(machine::State state = machine::bare_state()) : world(std::move(state), {}) {
    EXPECT_EQ(session.start(host::built_in_script_key()), "");
    session.store().put(ky::keys::SelfFree_LoggerApi.name, ky::ToStored<ky::ILoggerApi*>(kept));
  }

  /// A map with one reference, which the receiver takes over.
  ky::AttributeMap* map_of(const Attributes& attributes, bool ciphered = true) {
    const script::TextCipher cipher(system.cipher, host::built_in_script_key());
    std::string text = "<x";
    for (const auto& [name, value] : attributes) {
      text += " " + name + "=\"" + (ciphered ? cipher.encipher(value) : value) + "\"";
    }
    ports::XmlNode* document = nullptr;
    ports::XmlNode* element = nullptr;
    ky::AttributeMap* map = nullptr;
    std::wstring reason;
    EXPECT_EQ(system.xml.parse(text + "/>", document, reason), 0);
    EXPECT_EQ(system.xml.root(document, element), 0);
    EXPECT_EQ(system.xml.attributes(element, map), 0);
    system.xml.release(element);
    system.xml.release(document);
    return map;
  }

  Loaded load(std::string_view stem, const Attributes& attributes, std::int32_t index = 5) {
    const ky::Factory own = host::TableFactories(host::own_commands()).find(stem);
    Loaded loaded{host::CommandOwner((own != nullptr ? own : library.find(stem))())};
    loaded.command->SetIndex(index);
    ky::AttributeMap* map = map_of(attributes);
    loaded.result = loaded.command->LoadCiphered(&map);
    return loaded;
  }

  /// Loads the command, which has to succeed, and runs it once.
  host::CommandOwner run(std::string_view stem, const Attributes& attributes) {
    Loaded loaded = load(stem, attributes);
    EXPECT_EQ(loaded.result, 0u);
    EXPECT_EQ(loaded.command->Execute(0, 0), 0u);
    return std::move(loaded.command);
  }

  void put(const std::string& name, const wchar_t* text) {
    ky::Release(ky::FromStored<ky::CString*>(session.store().get("String_" + name)));
    session.store().put("String_" + name, ky::ToStored(new ky::CString(text)));
  }
  /// Null where the key is empty.
  const wchar_t* get_text(const std::string& name) {
    const auto* const held = ky::FromStored<ky::CString*>(session.store().get("String_" + name));
    return held == nullptr ? nullptr : held->value;
  }
  void put(const std::string& name, std::int32_t value) { session.store().put("int_" + name, ky::ToStored(value)); }
  std::int32_t get_int(const std::string& name) {
    return ky::FromStored<std::int32_t>(session.store().get("int_" + name));
  }

  /// Its folder is there.
  void make_file(const wchar_t* path, std::uint32_t attributes = ports::file_attribute::normal,
                 std::string_view bytes = "x") {
    const ports::Handle file = open(path, ports::Disposition::create_new, ports::file_share::none);
    std::uint32_t written = 0;
    EXPECT_TRUE(system.files.write(file, std::vector<std::uint8_t>(bytes.begin(), bytes.end()), written));
    EXPECT_TRUE(system.waits.close(file));
    EXPECT_TRUE(system.files.set_attributes(path, attributes));
  }
  ports::Handle open(const wchar_t* path, ports::Disposition how, std::uint32_t share) {
    const ports::Handle file = system.files.open(path, ports::file_access::generic_write, share, how, 0);
    EXPECT_NE(file, ports::Handle::invalid);
    return file;
  }

  /// The log as it stands.
  [[nodiscard]] std::wstring lines() const { return std::accumulate(log.begin(), log.end(), std::wstring()); }

  machine::Machine world;
  std::unique_ptr<ports::Engines> engines = ports::make_engines(world.errors());
  ports::System inner = world.system(*engines);
  faults::FaultySystem faulty{inner};
  ports::System system = faulty.system();
  std::vector<std::wstring> log;
  host::TableFactories library{ky::library::factories()};
  host::Session session{system, library};
  support::KeptLog* const kept = new support::KeptLog(log);  // the store's
};

class CommandFixture : public ::testing::Test, protected CommandWorld {};
