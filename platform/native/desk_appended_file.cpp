#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/desk/appended_file.h"
#include "platform/desk/desk.h"
#include "platform/desk/failure.h"

namespace desk {

namespace {

int descriptor(std::intptr_t handle) {
  return static_cast<int>(handle);
}

}  // namespace

AppendedFile::AppendedFile(std::string path) : path_(std::move(path)) {
  handle_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
  if (handle_ == -1) failed("cannot be written");
}

AppendedFile::~AppendedFile() {
  close();
}

void AppendedFile::append(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t went = ::write(descriptor(handle_), bytes.data(), bytes.size());
    if (went < 0 && errno == EINTR) continue;
    if (went < 0) return failed("cannot be written");
    bytes = bytes.subspan(static_cast<std::size_t>(went));
  }
}

void AppendedFile::cut(std::uint64_t size) {
  if (::ftruncate(descriptor(handle_), static_cast<off_t>(size)) != 0) failed("cannot be cut");
}

void AppendedFile::remove() {
  close();
  std::string failure = desk::remove(path_);
  if (failure_.empty()) failure_ = std::move(failure);
}

void AppendedFile::failed(const char* what) {
  const std::error_code error(errno, std::generic_category());
  if (failure_.empty()) failure_ = desk::failure(path_, what, error);
}

void AppendedFile::close() {
  if (handle_ != -1) ::close(descriptor(std::exchange(handle_, -1)));
}

}  // namespace desk
