#include "host/script/script_loader.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "host/script/command_schema.h"
#include "host/script/script_decrypter.h"
#include "installer/utils/base/strings/format.h"
#include "installer/utils/base/strings/number.h"
#include "installer/utils/base/strings/utf8.h"
#include "ky/keys.h"
#include "platform/ports/codes.h"
#include "platform/ports/system.h"

namespace host {

namespace {

using base::strings::format;
using base::strings::to_utf8;
using ports::MapOwner;
using ports::NodeOwner;
using std::string_view_literals::operator""sv;

std::string code_text(ports::Result code) {
  return format("0x%08X", static_cast<std::uint32_t>(code));
}

}  // namespace

ScriptLoader::ScriptLoader(const ports::System& system, const ScriptDecrypter& decrypter,
                           std::vector<const Factories*> sources)
    : system_(system), decrypter_(decrypter), sources_(std::move(sources)), decipherer_(system.cipher, decrypter.key) {}

ScriptLoader::~ScriptLoader() = default;

LoadedScript ScriptLoader::load(std::string_view utf8) {
  NodeOwner commands(system_.xml);
  if (find_commands(utf8, commands)) {
    load_elements(commands);
    check_all_ways();
    if (!script_.faults.empty()) return std::move(script_);
    script_.program.reserve(loaded_.size());
    for (ProgramStep& step : loaded_) (void)script_.program.add(std::move(step));
  }
  return std::move(script_);
}

bool ScriptLoader::find_commands(std::string_view utf8, NodeOwner& commands) {
  ports::Xml& xml = system_.xml;
  NodeOwner document(xml);
  std::wstring reason;
  if (xml.parse(utf8, document.receive(), reason) != ports::code::ok || document.empty()) {
    fault({}, {}, "the script is not well-formed XML: " + to_utf8(reason));
    return false;
  }
  NodeOwner root(xml);
  if (xml.root(document.get(), root.receive()) != ports::code::ok || xml.name(root.get(), name_) != ports::code::ok ||
      name_ != L"install") {
    fault({}, {}, "the script's root is not <install>");
    return false;
  }
  if (xml.first_element(root.get(), commands.receive()) != ports::code::ok ||
      xml.name(commands.get(), name_) != ports::code::ok || name_ != L"commands") {
    fault({}, {}, "the script's <install> does not hold <commands>");
    return false;
  }
  NodeOwner stranger(xml);
  if (xml.next_element(commands.get(), stranger.receive()) != ports::code::nothing) {
    fault({}, {}, "the script's <install> holds more than <commands>");
    return false;
  }
  return true;
}

void ScriptLoader::load_elements(const NodeOwner& commands) {
  ports::Xml& xml = system_.xml;
  NodeOwner element(xml);
  ports::Result result = xml.first_element(commands.get(), element.receive());
  while (result == ports::code::ok) {
    ++number_;
    load_element(element.get());
    ports::XmlNode* next = nullptr;
    result = xml.next_element(element.get(), next);
    element.reset(next);
  }
  if (result != ports::code::nothing) {
    fault({}, {}, "the script cannot be read behind element " + std::to_string(number_) + ": " + code_text(result));
  }
}

void ScriptLoader::load_element(ports::XmlNode* element) {
  ports::Xml& xml = system_.xml;
  // Wraps around, to be refused as an index, where a script names the greatest of all.
  previous_index_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(previous_index_) + 1);
  MapOwner map(xml);
  NodeOwner child(xml);
  if (xml.name(element, name_) != ports::code::ok || xml.attributes(element, map.receive()) != ports::code::ok) {
    fault({}, {}, "cannot be read");
    return;
  }
  const Kind& kind = kind_of(name_);
  written_ = {};
  FlowPoint point;
  bool good = kind.fault == nullptr;
  if (!good) fault(kind.name, {}, kind.fault);
  if (xml.first_element(element, child.receive()) != ports::code::nothing) {
    fault(kind.name, {}, "holds another element");
    good = false;
  }
  if (!check_attributes(kind, map.get(), point) || !good) return;

  CommandOwner command = load_command(kind, map);
  if (command == nullptr) return;
  if (const char* const attribute = misread(*command); attribute != nullptr) {
    fault(kind.name, attribute, "was read otherwise by its command");
    return;
  }
  previous_index_ = point.index = command->GetIndex();
  point.next = command->next;
  points_.push_back(point);
  loaded_.push_back({kind.name, point.index, std::move(command)});
}

const ScriptLoader::Kind& ScriptLoader::kind_of(const std::wstring& ciphered_name) {
  const auto known = kinds_.find(ciphered_name);
  if (known != kinds_.end()) return known->second;

  Kind kind;
  const Deciphered& deciphered = decipherer_.decipher(ciphered_name);
  kind.fault = deciphered.fault;
  kind.name = kind.fault == nullptr ? std::string(deciphered.plain) : to_utf8(ciphered_name);
  if (kind.fault == nullptr) {
    for (const Factories* const source : sources_) {
      if (kind.make == nullptr) kind.make = source->find(kind.name);
    }
    if (kind.make == nullptr) kind.fault = "is not the name of a command";
    kind.schema = schema_of(kind.name);
  }
  return kinds_.emplace(ciphered_name, std::move(kind)).first->second;
}

bool ScriptLoader::check_attributes(const Kind& kind, ky::AttributeMap* map, FlowPoint& point) {
  bool good = true;
  std::int32_t length = 0;
  ports::Result result = system_.xml.length(map, length);
  const auto count = static_cast<std::size_t>(result == ports::code::ok ? length : 0);
  if (attribute_names_.size() < count) attribute_names_.resize(count);
  for (std::int32_t i = 0; result == ports::code::ok && i < length; ++i) {
    NodeOwner attribute(system_.xml);
    result = system_.xml.item(map, i, attribute.receive());
    if (result != ports::code::ok) break;
    good &= check_attribute(kind, attribute.get(), attribute_names_[static_cast<std::size_t>(i)], point);
  }
  if (result != ports::code::ok) {
    fault(kind.name, {}, "has attributes that cannot be read: " + code_text(result));
    return false;
  }
  if (kind.schema != nullptr) {
    std::string missing = missing_attribute(*kind.schema, std::span(attribute_names_).first(count));
    if (!missing.empty()) {
      fault(kind.name, {}, std::move(missing));
      good = false;
    }
  }
  return good;
}

bool ScriptLoader::check_attribute(const Kind& kind, ports::XmlNode* attribute, std::wstring& name, FlowPoint& point) {
  if (system_.xml.name(attribute, name) != ports::code::ok || system_.xml.text(attribute, text_) != ports::code::ok) {
    fault(kind.name, to_utf8(name), "cannot be read");
    return false;
  }
  const Deciphered& value = decipherer_.decipher(text_);
  if (value.fault != nullptr) {
    fault(kind.name, to_utf8(name), value.fault);
    return false;
  }
  const auto integer = [&value] { return base::strings::to_integer(base::strings::to_wide(value.plain).c_str()); };
  if (name == L"target"sv) point.target = integer();
  if (name == L"index"sv) written_.index = integer();
  if (name == L"next"sv) written_.next = integer();
  if (name == L"execCondition"sv) written_.condition = std::string(ky::int_prefix).append(value.plain);
  return true;
}

/// The attribute that the command has otherwise than it is written, or null. A command goes on where reading one of
/// these fails: it would then run unasked, or send the run in circles.
const char* ScriptLoader::misread(const ky::CInstallCommand& command) const {
  if (written_.index && command.index != *written_.index) return "index";
  if (written_.next && command.next != *written_.next) return "next";
  if (!written_.condition) return nullptr;
  if (command.execCondition == nullptr) return "execCondition";
  // The command's key is in the active code page: beyond ASCII the two may rightly differ.
  const std::string& key = *written_.condition;
  const bool ascii = std::all_of(key.begin(), key.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  return ascii && key != command.execCondition.get() ? "execCondition" : nullptr;
}

CommandOwner ScriptLoader::load_command(const Kind& kind, MapOwner& map) {
  CommandOwner command(kind.make());
  command->SetIndex(previous_index_);
  ky::AttributeMap* handed_over = map.give_up();
  std::uint32_t result = 0;
  const std::size_t failed_before = decrypter_.failed_conversions();
  try {
    result = command->LoadCiphered(&handed_over);
  } catch (const std::exception& error) {
    fault(kind.name, {}, std::string("its load failed: ") + error.what());
    return nullptr;
  } catch (...) {
    fault(kind.name, {}, "its load failed");
    return nullptr;
  }
  if (decrypter_.failed_conversions() != failed_before) {
    fault(kind.name, {}, "one of its values could not be converted");
    return nullptr;
  }
  if (result == 0) return command;
  fault(kind.name, {}, "its load failed with code " + std::to_string(result));
  return nullptr;
}

void ScriptLoader::fault(const std::string& name, std::string attribute, std::string reason) {
  script_.faults.push_back({number_, name, std::move(attribute), std::move(reason)});
}

void ScriptLoader::check_all_ways() {
  // Where an element could not be loaded its index is not known, so every way past it would look lost as well.
  if (!script_.faults.empty()) return;
  for (FlowFault& lost : check_flow(points_)) {
    number_ = lost.point + 1;
    fault(loaded_[lost.point].name, lost.attribute, std::move(lost.reason));
  }
}

}  // namespace host
