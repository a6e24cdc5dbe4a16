#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/clock.h"
#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/registry.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace contract {

/// A program to start: its path, and the arguments that it wants.
struct Child {
  std::wstring program;
  std::wstring arguments;
  [[nodiscard]] std::wstring command_line() const { return L"\"" + program + L"\" " + arguments; }
};

/// What is the matter with a library's signature. All but `other` are signed under the name of the first signer.
enum class Signing { own, other, none, tampered, expired, stranger };
inline constexpr wchar_t signer_name[] = L"Ky Test Signer One";
inline constexpr wchar_t other_signer_name[] = L"Ky Test Signer Two";

/// A world whose ports a contract test tries: the real one or a machine. Each test has its own.
class World {
 public:
  virtual ~World() = default;
  [[nodiscard]] virtual const ports::System& system() = 0;
  /// A scratch folder that starts empty, without closing backslash.
  [[nodiscard]] virtual std::wstring folder() = 0;
  /// A key below HKEY_LOCAL_MACHINE that may be made and filled; it is not there at the start.
  [[nodiscard]] virtual std::wstring key() = 0;
  /// A program that lives for so long and ends with `exit_code`.
  [[nodiscard]] virtual Child child(std::uint32_t milliseconds, std::uint32_t exit_code) = 0;
  /// A fresh library in the scratch folder.
  [[nodiscard]] virtual std::wstring library(Signing signing) = 0;
  /// A fresh file that is a hive with the keys of `hive_key`.
  [[nodiscard]] virtual std::wstring hive() = 0;
  /// Registers a task under a full path; it goes with the world.
  virtual void add_task(const std::wstring& path) = 0;
  /// The name under which a driver package of the store published its INF file.
  [[nodiscard]] virtual std::wstring package_inf() = 0;
  /// Makes sure that a desktop's shell runs.
  virtual void start_shell() {}
  /// The real system is Wine, which is known to differ in places: the rows of docs/wine.md.
  [[nodiscard]] virtual bool wine() const = 0;
  /// The engines are those of Wine; a machine has the engines of its build.
  [[nodiscard]] virtual bool wine_engines() const = 0;
};

inline constexpr wchar_t hive_key[] = L"Software\\Held";

struct WorldMaker {
  const char* name;
  std::unique_ptr<World> (*make)();
  friend std::ostream& operator<<(std::ostream& out, const WorldMaker& maker) { return out << maker.name; }
};

/// What this build can try.
[[nodiscard]] std::vector<WorldMaker> worlds();

/// The resource of the system's own module: its number and type, and its bytes.
inline constexpr std::uint16_t resource_id = 7;
inline constexpr wchar_t resource_type[] = L"XML";
inline constexpr std::string_view resource_bytes = "<contract/>";

/// Base of all contract tests: the world's ports at hand.
class Contract : public testing::TestWithParam<WorldMaker> {
 protected:
  [[nodiscard]] const ports::System& system() { return world_->system(); }
  [[nodiscard]] World& world() { return *world_; }
  [[nodiscard]] ports::ErrorCode last_error() { return system().errors.last(); }

  /// The code of a call that answered `done`: 0, or the last error.
  [[nodiscard]] ports::ErrorCode code_of(bool done) { return done ? 0 : last_error(); }

  void make_file(const std::wstring& path, std::string_view bytes) {
    const ports::Handle file =
        system().files.open(path.c_str(), ports::file_access::generic_write, 0, ports::Disposition::create_always, 0);
    ASSERT_NE(file, ports::Handle::invalid) << last_error();
    std::uint32_t written = 0;
    EXPECT_TRUE(system().files.write(file, std::vector<std::uint8_t>(bytes.begin(), bytes.end()), written));
    EXPECT_EQ(written, bytes.size());
    EXPECT_TRUE(system().waits.close(file));
  }

  /// Holds everywhere but under Wine, and fails as soon as it holds there too: then the row of docs/wine.md goes.
  void expect_but_for_wine(const char* row, bool holds) { expect_either(row, holds, world_->wine()); }
  /// The same for what an engine does.
  void expect_but_for_wine_engines(const char* row, bool holds) { expect_either(row, holds, world_->wine_engines()); }

 private:
  void expect_either(const char* row, bool holds, bool differs) {
    EXPECT_NE(holds, differs) << "docs/wine.md, row " << row;
  }

  std::unique_ptr<World> world_ = GetParam().make();
};

/// Runs the suite in each world.
#define KY_CONTRACT(suite)                                \
  INSTANTIATE_TEST_SUITE_P(                               \
      Each, suite, testing::ValuesIn(contract::worlds()), \
      [](const testing::TestParamInfo<contract::WorldMaker>& i) { return std::string(i.param.name); })

}  // namespace contract
