#pragma once

#include <memory>
#include <string>

#include "platform/machine/machine.h"
#include "platform/ports/build.h"

namespace support {

/// A machine with nothing on it, the engines of the build, and the few things that tests lay out and look at through
/// its ports.
struct BareMachine {
  machine::Machine machine;
  std::unique_ptr<ports::Engines> engines = ports::make_engines(machine.errors());
  ports::System system = machine.system(*engines);

  void folder(const wchar_t* path) const {
    if (!system.files.create_folder(path)) throw system.errors.last();
  }
  void file(const wchar_t* path) const { (void)system.waits.close(hold(path, 0, ports::Disposition::create_new)); }
  /// Opens a file for reading and keeps it open.
  [[nodiscard]] ports::Handle hold(const wchar_t* path, std::uint32_t share,
                                   ports::Disposition disposition = ports::Disposition::open_existing) const {
    const ports::Handle handle = system.files.open(path, ports::file_access::generic_read, share, disposition, 0);
    if (handle == ports::Handle::invalid) throw system.errors.last();
    return handle;
  }
  void link(const wchar_t* path, const wchar_t* target, bool to_folder) const {
    if (!system.files.create_link(path, target, to_folder)) throw system.errors.last();
  }
  [[nodiscard]] bool there(const wchar_t* path) const {
    return system.files.attributes(path) != ports::file_attribute::invalid;
  }

  void key(ports::RegistryKey root, const wchar_t* path) const { close(make(root, path, 0)); }
  void value(ports::RegistryKey root, const wchar_t* path, const wchar_t* name) const {
    const ports::RegistryKey made = make(root, path, 0);
    expect_success(system.registry.set(made, name, {ports::RegistryType::number, {1, 0, 0, 0}}));
    close(made);
  }
  /// `target` is the full name, "\REGISTRY\MACHINE\...".
  void key_link(ports::RegistryKey root, const wchar_t* path, const std::wstring& target) const {
    const ports::RegistryKey made = make(root, path, ports::registry_option::create_link);
    ports::RegistryValue value{ports::RegistryType::link, {}};
    for (const wchar_t unit : target) {
      value.bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
      value.bytes.push_back(static_cast<std::uint8_t>(unit >> 8 & 0xFF));
    }
    expect_success(system.registry.set(made, L"SymbolicLinkValue", value));
    close(made);
  }
  [[nodiscard]] bool key_there(ports::RegistryKey root, const wchar_t* path) const {
    ports::RegistryKey found = ports::RegistryKey::null;
    if (system.registry.open(root, path, ports::registry_option::open_link, ports::registry_access::read, found) != 0) {
      return false;
    }
    close(found);
    return true;
  }
  [[nodiscard]] bool value_there(ports::RegistryKey root, const wchar_t* path, const wchar_t* name) const {
    ports::RegistryKey found = ports::RegistryKey::null;
    expect_success(system.registry.open(root, path, 0, ports::registry_access::read, found));
    ports::RegistryValue value;
    const bool there = system.registry.query(found, name, value) == 0;
    close(found);
    return there;
  }

 private:
  static void expect_success(ports::ErrorCode code) {
    if (code != 0) throw code;
  }
  [[nodiscard]] ports::RegistryKey make(ports::RegistryKey root, const wchar_t* path, std::uint32_t options) const {
    ports::RegistryKey made = ports::RegistryKey::null;
    bool created = false;
    expect_success(system.registry.create(
        root, path, options,
        ports::registry_access::read | ports::registry_access::write | ports::registry_access::create_link, made,
        created));
    return made;
  }
  void close(ports::RegistryKey key) const { (void)system.registry.close(key); }
};

}  // namespace support
