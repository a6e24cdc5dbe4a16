#include "installer/utils/base/process/image_path.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "installer/extern/base/include/winapi/scoped_handle.h"
#include "installer/extern/base/include/winapi/win_error_category.h"
#include "installer/utils/base/strings/case_fold.h"
#include "platform/ports/attached.h"
#include "platform/ports/environment.h"
#include "platform/ports/inspection.h"
#include "platform/ports/mutex.h"
#include "platform/ports/processes.h"
#include "platform/ports/system.h"

namespace base::process {

namespace {

constexpr std::size_t longest_path = 32767;
constexpr std::wstring_view device_prefix = L"\\device\\";

[[nodiscard]] bool is_32_bit_on_64() {
  ports::ProcessInspection& inspection = ports::system().inspection;
  bool wow64 = false;
  return inspection.is_wow64(inspection.current(), wow64) && wow64;
}

/// The device behind a drive's letter, as the system spells it.
class DriveRow {
 public:
  void read(wchar_t letter) {
    const wchar_t name[] = {letter, L':', L'\0'};
    const std::size_t count = ports::system().environment.dos_device(name, units_);
    // So that no device is taken for one whose number goes on with another digit. The count has two terminators in it.
    // A letter that stands for several devices has the backslash behind the last, and its paths come out unusable.
    if (count >= 3 && units_[count - 3] != L'\\') units_[count - 2] = L'\\';
    units_[text_end] = L'\0';
    units_[length_place] = static_cast<wchar_t>(std::wstring_view(units_.data()).size());
  }
  [[nodiscard]] std::wstring_view device() const {
    return {units_.data(), static_cast<std::size_t>(units_[length_place])};
  }

 private:
  static constexpr std::size_t text_end = 258;
  static constexpr std::size_t length_place = 259;
  std::array<wchar_t, 260> units_{};
};

/// The bound system's drives, as they were when they were first asked for.
class DriveTable final : public ports::Attachment {
 public:
  [[nodiscard]] std::optional<std::wstring> dos_path(std::wstring_view path) KY_EXCLUDES(mutex_) {
    const ports::Lock lock(mutex_);
    build();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const std::wstring_view device = rows_[i].device();
      if (device.empty() || !strings::equal_ignoring_case(path.substr(0, device.size()), device)) continue;
      return std::wstring{letter(i), L':'}.append(path.substr(device.size() - 1));
    }
    return std::nullopt;
  }

 private:
  static wchar_t letter(std::size_t row) { return static_cast<wchar_t>(L'A' + static_cast<wchar_t>(row)); }
  void build() KY_REQUIRES(mutex_) {
    if (built_) return;
    for (std::size_t i = 0; i < rows_.size(); ++i) rows_[i].read(letter(i));
    built_ = true;
  }

  ports::Mutex mutex_;
  bool built_ KY_GUARDED_BY(mutex_) = false;
  std::array<DriveRow, 26> rows_ KY_GUARDED_BY(mutex_);
};

class OwnImagePath final : public ports::Attachment {
 public:
  [[nodiscard]] const std::wstring& get() KY_EXCLUDES(mutex_) {
    const ports::Lock lock(mutex_);
    if (!path_) {
      std::error_code ignored;
      path_ = GetProcessImagePath(ports::system().processes.current_id(), ignored);
    }
    return *path_;
  }

 private:
  ports::Mutex mutex_;
  std::optional<std::wstring> path_ KY_GUARDED_BY(mutex_);  // never changed once it is there
};

}  // namespace

std::wstring GetProcessImagePath(std::uint32_t pid, std::error_code& error) {
  if (is_32_bit_on_64()) return GetProcessImagePathFromDevice(pid);
  if (pid == 0) return {};
  ports::ProcessInspection& inspection = ports::system().inspection;
  std::vector<wchar_t> buffer(longest_path);
  const winapi::scoped_handle process(
      inspection.open(ports::process_access::query_information | ports::process_access::vm_read, pid));
  if (!process.valid() || inspection.image_path(process.get(), buffer) == 0) {
    error = winapi::last_error();
    return {};
  }
  return buffer.data();
}

std::wstring GetProcessImagePathFromDevice(std::uint32_t pid) {
  if (pid == 0) return {};
  ports::ProcessInspection& inspection = ports::system().inspection;
  std::vector<wchar_t> buffer(longest_path);
  const winapi::scoped_handle process(inspection.open(ports::process_access::query_limited_information, pid));
  if (!process.valid() || inspection.image_device_path(process.get(), buffer) == 0) return {};
  return DevicePathToDosPath(buffer.data()).value_or(std::wstring());
}

std::optional<std::wstring> DevicePathToDosPath(const wchar_t* path) {
  if (path == nullptr) return std::nullopt;
  const std::wstring_view text(path);
  if (!strings::equal_ignoring_case(text.substr(0, device_prefix.size()), device_prefix)) return std::nullopt;
  return ports::attached<DriveTable>().dos_path(text);
}

const std::wstring& GetOwnImagePath() {
  return ports::attached<OwnImagePath>().get();
}

}  // namespace base::process
