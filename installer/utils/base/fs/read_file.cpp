#include "installer/utils/base/fs/read_file.h"

#include <array>
#include <cstdint>

#include "platform/ports/codes.h"
#include "platform/ports/files.h"
#include "platform/ports/system.h"
#include "platform/ports/threads.h"

namespace base::fs {

namespace {

class OpenFile {
 public:
  OpenFile(const ports::System& system, const wchar_t* path)
      : system_(system),
        handle_(system.files.open(path, ports::file_access::generic_read, ports::file_share::all,
                                  ports::Disposition::open_existing, 0)) {}
  ~OpenFile() {
    if (handle_ == ports::Handle::invalid) return;
    const ports::ErrorCode last = system_.errors.last();
    static_cast<void>(system_.waits.close(handle_));
    system_.errors.set_last(last);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  [[nodiscard]] ports::Handle get() const { return handle_; }

 private:
  const ports::System& system_;
  const ports::Handle handle_;
};

}  // namespace

bool read_file(const wchar_t* path, std::size_t most, std::string& out) {
  const ports::System& system = ports::system();
  const OpenFile file(system, path);
  if (file.get() == ports::Handle::invalid) return false;
  out.clear();
  std::array<std::uint8_t, 0x4000> block;
  for (;;) {
    std::uint32_t got = 0;
    if (!system.files.read(file.get(), block, got)) return false;
    if (got == 0) return true;
    if (got > most - out.size()) {
      system.errors.set_last(ports::code::buffer_overflow);
      return false;
    }
    out.append(reinterpret_cast<const char*>(block.data()), got);
  }
}

}  // namespace base::fs
