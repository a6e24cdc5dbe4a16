#include "platform/desk/appended_file.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/desk/desk.h"

namespace desk {

namespace {

[[nodiscard]] std::filesystem::path to_path(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace

AppendedFile::AppendedFile(std::string path) : path_(std::move(path)) {
  const std::filesystem::path target = to_path(path_);
  std::ofstream(target, std::ios::binary | std::ios::trunc).close();
  // Without a buffer each piece is one call of the system.
  file_.rdbuf()->pubsetbuf(nullptr, 0);
  file_.open(target, std::ios::binary | std::ios::app);
  check("cannot be written");
}

void AppendedFile::append(std::span<const std::uint8_t> bytes) {
  file_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  check("cannot be written");
}

void AppendedFile::cut(std::uint64_t size) {
  std::error_code error;
  std::filesystem::resize_file(to_path(path_), size, error);
  if (error && failure_.empty()) failure_ = path_ + ": cannot be cut: " + error.message();
}

void AppendedFile::remove() {
  file_.close();
  std::string failure = desk::remove(path_);
  if (failure_.empty()) failure_ = std::move(failure);
}

void AppendedFile::check(const char* what) {
  if (file_.good() || !failure_.empty()) return;
  failure_ = path_ + ": " + what;
  file_.clear();
}

}  // namespace desk
