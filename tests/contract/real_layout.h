#pragma once

#include <string>
#include <vector>

namespace contract {

/// Writes a hive of the real system, with `keys` in it. `scratch` is a key below HKEY_LOCAL_MACHINE that is made for
/// this and taken away.
void save_hive(const std::wstring& file, const std::wstring& scratch, const std::wstring& keys);

/// Held by a test that has users' hives mounted for real, whatever process it is in: who unmounts them, unmounts them
/// all.
class OwnHives {
 public:
  OwnHives();
  ~OwnHives();
  OwnHives(const OwnHives&) = delete;
  OwnHives& operator=(const OwnHives&) = delete;

 private:
  void* const mutex_;
};

/// Tasks of the real scheduler, which do nothing; they go at the end, as far as they still stand.
class RegisteredTasks {
 public:
  RegisteredTasks() = default;
  ~RegisteredTasks();
  RegisteredTasks(const RegisteredTasks&) = delete;
  RegisteredTasks& operator=(const RegisteredTasks&) = delete;

  void add(const std::wstring& path);

 private:
  std::vector<std::wstring> paths_;
};

/// Whether the scheduler has a task under this path.
[[nodiscard]] bool has_task(const std::wstring& path);

}  // namespace contract
