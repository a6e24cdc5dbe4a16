#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/factories.h"
#include "host/script/decipherer.h"
#include "host/script/flow_check.h"
#include "host/script/program.h"
#include "host/script/script_fault.h"
#include "platform/ports/xml_owner.h"

namespace ports {
struct System;
}

namespace host {

struct CommandSchema;
class ScriptDecrypter;

/// What became of a script. It may run only where `faults` is empty.
struct LoadedScript {
  Program program;
  std::vector<ScriptFault> faults;
};

/// Loads enciphered scripts, one an object. Everything that can be seen before a run is checked: the document's shape,
/// the ciphered form of every name and value, the names, the attributes that a command needs, the indexes and every way
/// from one command to the next. A command reads its attributes only where all of its values are good, and all faults
/// are collected.
class ScriptLoader {
 public:
  /// `decrypter` is the one in the store, through which the commands decipher. A name is looked for in the sources in
  /// their order.
  ScriptLoader(const ports::System& system, const ScriptDecrypter& decrypter, std::vector<const Factories*> sources);
  ~ScriptLoader();

  /// `utf8` is the document, with or without byte order mark.
  [[nodiscard]] LoadedScript load(std::string_view utf8);

 private:
  /// What an element's name stands for.
  struct Kind {
    const char* fault = nullptr;
    std::string name;
    ky::Factory make = nullptr;
    const CommandSchema* schema = nullptr;
  };

  [[nodiscard]] bool find_commands(std::string_view utf8, ports::NodeOwner& commands);
  void load_elements(const ports::NodeOwner& commands);
  void load_element(ports::XmlNode* element);
  [[nodiscard]] const Kind& kind_of(const std::wstring& ciphered_name);
  [[nodiscard]] bool check_attributes(const Kind& kind, ky::AttributeMap* map, FlowPoint& point);
  [[nodiscard]] bool check_attribute(const Kind& kind, ports::XmlNode* attribute, std::wstring& name, FlowPoint& point);
  [[nodiscard]] CommandOwner load_command(const Kind& kind, ports::MapOwner& map);
  [[nodiscard]] const char* misread(const ky::CInstallCommand& command) const;
  void fault(const std::string& name, std::string attribute, std::string reason);
  void check_all_ways();

  const ports::System& system_;
  const ScriptDecrypter& decrypter_;
  std::vector<const Factories*> sources_;
  Decipherer decipherer_;
  std::unordered_map<std::wstring, Kind> kinds_;

  LoadedScript script_;
  std::size_t number_ = 0;  // of the element at hand
  std::int32_t previous_index_ = -1;
  /// What the element at hand says of its place and its ways.
  struct Written {
    std::optional<std::int32_t> index;
    std::optional<std::int32_t> next;
    std::optional<std::string> condition;  // the whole key
  } written_;
  // The elements that were loaded and their ways, in step.
  std::vector<ProgramStep> loaded_;
  std::vector<FlowPoint> points_;
  // Kept from element to element for their memory.
  std::vector<std::wstring> attribute_names_;  // those of the element at hand, and older ones behind them
  std::wstring name_;
  std::wstring text_;
};

}  // namespace host
