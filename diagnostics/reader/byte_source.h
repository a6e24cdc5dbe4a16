#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/desk/input_file.h"

namespace diagnostics::reader {

/// The bytes of a log file. A failure is one line with the file's name, as the desk gives it; empty is success.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  [[nodiscard]] virtual std::string length(std::uint64_t& bytes) const = 0;
  /// `size` is how many bytes came, fewer than there is room for at the end alone.
  [[nodiscard]] virtual std::string read(std::uint64_t offset, std::span<std::uint8_t> into,
                                         std::size_t& size) const = 0;
};

/// A file of the desk.
class FileSource final : public ByteSource {
 public:
  [[nodiscard]] std::string open(const std::string& path) { return file_.open(path); }
  [[nodiscard]] std::string length(std::uint64_t& bytes) const override { return file_.length(bytes); }
  [[nodiscard]] std::string read(std::uint64_t offset, std::span<std::uint8_t> into, std::size_t& size) const override {
    return file_.read(offset, into, size);
  }

 private:
  desk::InputFile file_;
};

}  // namespace diagnostics::reader
