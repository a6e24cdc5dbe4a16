#include <benchmark/benchmark.h>

#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "bench/desk_world.h"
#include "ky/install_command.h"
#include "ky/keys.h"
#include "platform/ports/xml_owner.h"
#include "tools/ky/script/text_cipher.h"

namespace bench {
namespace {

constexpr std::string_view xpath = "/config/UninstallData/MainLine/InstallPath";

/// The command as a script has it, over the edition's configuration.
host::CommandOwner load_command(DeskWorld& desk, const std::string& document) {
  const std::wstring ascii(document.begin(), document.end());
  desk.session.store().put("String_Config", ky::ToStored(new ky::CString(ascii)));
  const script::TextCipher cipher(desk.system.cipher, host::built_in_script_key());
  const std::string text = "<x var=\"" + cipher.encipher("InstallPath") + "\" xpath=\"" +
                           cipher.encipher(std::string(xpath)) + "\" xmlVar=\"" + cipher.encipher("Config") + "\"/>";
  ports::NodeOwner parsed(desk.system.xml), element(desk.system.xml);
  ports::MapOwner map(desk.system.xml);
  std::wstring reason;
  host::CommandOwner command(desk.library.find("GetStringFromXml")());
  if (desk.system.xml.parse(text, parsed.receive(), reason) != 0 ||
      desk.system.xml.root(parsed.get(), element.receive()) != 0 ||
      desk.system.xml.attributes(element.get(), map.receive()) != 0) {
    std::abort();
  }
  ky::AttributeMap* handed_over = map.give_up();
  if (command->LoadCiphered(&handed_over) != 0) std::abort();
  return command;
}

void read_xml_value(benchmark::State& state) {
  DeskWorld desk;
  const std::string document = read_source("resources/config.xml");
  const host::CommandOwner command = load_command(desk, document);
  for (auto _ : state) {
    if (command->Execute(0, 0) != 0) std::abort();
    // The command leaves what the key held to the host.
    ky::Release(ky::FromStored<ky::CString*>(desk.session.store().get("String_InstallPath")));
  }
  desk.session.store().put("String_InstallPath", 0);
}
BENCHMARK(read_xml_value)->Unit(benchmark::kMicrosecond);

/// The parser alone: parses the same text, as UTF-8 at hand, and finds the value.
void read_xml_value_floor(benchmark::State& state) {
  const std::string document = read_source("resources/config.xml");
  const std::string query(xpath);
  for (auto _ : state) {
    pugi::xml_document parsed;
    if (!parsed.load_buffer(document.data(), document.size(), pugi::parse_default, pugi::encoding_utf8)) std::abort();
    benchmark::DoNotOptimize(parsed.select_node(query.c_str()).node().text().get());
  }
}
BENCHMARK(read_xml_value_floor)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace bench
