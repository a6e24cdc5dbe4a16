#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/desk/failure.h"
#include "platform/desk/input_file.h"

namespace desk {

namespace {

int descriptor(std::intptr_t handle) {
  return static_cast<int>(handle);
}

}  // namespace

InputFile::~InputFile() {
  if (handle_ != -1) ::close(descriptor(handle_));
}

std::string InputFile::failed() const {
  return failure(path_, "cannot be read", std::error_code(errno, std::generic_category()));
}

std::string InputFile::open(const std::string& path) {
  path_ = path;
  // Opening a pipe would wait for its other end.
  handle_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat status {};
  if (handle_ == -1 || ::fstat(descriptor(handle_), &status) != 0) return failed();
  if (S_ISDIR(status.st_mode)) return path + ": cannot be read: it is a folder";
  return S_ISREG(status.st_mode) ? std::string() : path + ": cannot be read: it is no plain file";
}

std::string InputFile::length(std::uint64_t& bytes) const {
  struct stat status {};
  if (::fstat(descriptor(handle_), &status) != 0) return failed();
  bytes = static_cast<std::uint64_t>(status.st_size);
  return {};
}

std::string InputFile::read(std::uint64_t offset, std::span<std::uint8_t> into, std::size_t& size) const {
  for (size = 0; size < into.size();) {
    const ssize_t came =
        ::pread(descriptor(handle_), into.data() + size, into.size() - size, static_cast<off_t>(offset + size));
    if (came < 0 && errno == EINTR) continue;
    if (came < 0) return failed();
    if (came == 0) break;
    size += static_cast<std::size_t>(came);
  }
  return {};
}

}  // namespace desk
