#pragma once

#include <span>
#include <string_view>

#include "ky/factories.h"
#include "platform/ports/types.h"

namespace ports {
class Modules;
}

namespace host {

using ky::NamedFactory;

/// Where the commands of a script come from.
class Factories {
 public:
  virtual ~Factories() = default;

  /// The factory of element `stem`, null where this source has none. Element names are at most 367 bytes.
  [[nodiscard]] virtual ky::Factory find(std::string_view stem) const = 0;
};

/// The factories that a loaded library exports as `GetC<stem>Command`.
class ModuleFactories final : public Factories {
 public:
  ModuleFactories(ports::Modules& modules, ports::Module module) : modules_(modules), module_(module) {}
  [[nodiscard]] ky::Factory find(std::string_view stem) const override;

 private:
  ports::Modules& modules_;
  ports::Module module_;
};

/// The factories of a table that is linked in and outlives this object.
class TableFactories final : public Factories {
 public:
  explicit TableFactories(std::span<const NamedFactory> table) : table_(table) {}
  [[nodiscard]] ky::Factory find(std::string_view stem) const override;

 private:
  std::span<const NamedFactory> table_;
};

}  // namespace host
