#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "platform/faults/faulty_system.h"
#include "tests/support/command_fixture.h"
#include "tests/support/named_world.h"

namespace attacks {

/// A hook before every call of the system that a command makes. It stands where the wrapped ports keep the last error,
/// which they do before each call.
class Moments final : public ports::Errors {
 public:
  explicit Moments(ports::Errors& inner) : inner_(inner) {}

  /// Counts from 1, and from now on.
  void start(std::map<std::size_t, std::function<void()>> acts) {
    acts_ = std::move(acts);
    passed_ = 0;
  }
  void stop() { acts_.clear(); }
  [[nodiscard]] std::size_t passed() const { return passed_; }

  ports::ErrorCode last() override;
  void set_last(ports::ErrorCode code) override { inner_.set_last(code); }
  ports::ErrorCode of_status(ports::Status status) override { return inner_.of_status(status); }

 private:
  ports::Errors& inner_;
  std::map<std::size_t, std::function<void()>> acts_;
  std::size_t passed_ = 0;
};

/// A command on a machine where something that it is to delete (Data\Suite, on C: and below
/// HKEY_LOCAL_MACHINE\SOFTWARE, and Software\Suite of user S-1-5-21-7) has a twin below Victim, which no script names.
/// Somebody plants links while the command runs, with the system's own calls where these could refuse it.
class AttackedWorld : public CommandWorld {
 public:
  using Plant = void (AttackedWorld::*)(const std::wstring& place, const std::wstring& target);

  explicit AttackedWorld(const support::NamedWorld& layout = laid_out());

  [[nodiscard]] static support::NamedWorld laid_out();

  /// All that is below Victim, with content and attributes.
  [[nodiscard]] std::wstring victim();

  // What a plant replaces is moved aside first; it plants nothing where the system does not let it.
  void symbolic_link(const std::wstring& place, const std::wstring& target);
  void junction(const std::wstring& place, const std::wstring& target);
  /// The folder that is there, emptied, becomes a junction. It may be open.
  void junction_in_place(const std::wstring& place, const std::wstring& target);
  /// The junction becomes a folder again.
  void take_back(const std::wstring& place, const std::wstring& target);
  void hard_link(const std::wstring& place, const std::wstring& target);
  /// `target` is below HKEY_LOCAL_MACHINE.
  void key_link(const std::wstring& place, const std::wstring& target);

  /// Loads the command and runs it once. `acts` come by the moment before which they happen.
  std::uint32_t run_under(std::string_view stem, const Attributes& attributes,
                          std::map<std::size_t, std::function<void()>> acts = {});
  [[nodiscard]] std::size_t moments() const { return watch_.passed(); }

 private:
  /// Whoever has the file open closes it.
  void let_go(const std::wstring& place);
  [[nodiscard]] bool move_aside(const std::wstring& place);

  Moments watch_{world.errors()};
  ports::System behind_ = ports::with(inner, watch_);
  faults::FaultySystem watched_{behind_};
};

}  // namespace attacks
