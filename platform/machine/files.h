#pragma once

#include "platform/machine/state.h"
#include "platform/ports/files.h"

namespace ports {
class Errors;
}

namespace machine {

class DeskCopies;
class HandleTable;
class OpenFile;
struct Found;
struct Path;
enum class LastLink;

/// The machine's files.
class Files final : public ports::Files {
 public:
  Files(World& world, HandleTable& handles, ports::Errors& errors, DeskCopies& copies)
      : world_(world), handles_(handles), errors_(errors), copies_(copies) {}

  [[nodiscard]] ports::Handle open(const wchar_t* path, std::uint32_t access, std::uint32_t share,
                                   ports::Disposition disposition, std::uint32_t flags) override;
  bool read(ports::Handle file, std::span<std::uint8_t> into, std::uint32_t& got) override;
  bool write(ports::Handle file, std::span<const std::uint8_t> bytes, std::uint32_t& written) override;
  bool flush(ports::Handle file) override;
  bool information(ports::Handle file, ports::FileInformation& out) override;
  [[nodiscard]] ports::Status case_sensitivity(ports::Handle folder, std::uint32_t& flags) override;
  bool identity(ports::Handle file, ports::FileIdentity& out) override;
  bool mark_deleted(ports::Handle file) override;
  bool set_attributes_of(ports::Handle file, std::uint32_t attributes) override;
  bool rename(ports::Handle file, const wchar_t* to) override;
  [[nodiscard]] std::uint32_t attributes(const wchar_t* path) override;
  bool set_attributes(const wchar_t* path, std::uint32_t attributes) override;
  [[nodiscard]] bool exists(const wchar_t* path) override;
  bool remove(const wchar_t* path) override;
  bool remove_folder(const wchar_t* path) override;
  bool create_folder(const wchar_t* path) override;
  bool create_link(const wchar_t* link, const wchar_t* target, bool to_folder) override;
  bool move(const wchar_t* from, const wchar_t* to, std::uint32_t flags) override;
  [[nodiscard]] std::uint32_t temp_folder(std::span<wchar_t> into) override;
  [[nodiscard]] std::uint32_t temp_file(const wchar_t* folder, const wchar_t* prefix, std::uint32_t unique,
                                        std::span<wchar_t, 260> into) override;
  [[nodiscard]] ports::Handle find_first(const wchar_t* pattern, ports::FolderRow& row) override;
  bool list(ports::Handle folder, bool restart, std::vector<ports::FolderRow>& rows) override;
  bool find_next(ports::Handle search, ports::FolderRow& row) override;
  bool find_close(ports::Handle search) override;

 private:
  bool fail(ports::ErrorCode error);
  template <class T>
  [[nodiscard]] T failed(ports::ErrorCode error, T result) {
    fail(error);
    return result;
  }
  /// True for success; otherwise the code is the last error.
  bool done(ports::ErrorCode error) { return error == 0 || fail(error); }
  [[nodiscard]] Found found(const wchar_t* path, LastLink last) KY_REQUIRES(world_.mutex);
  [[nodiscard]] ports::ErrorCode parsed(const wchar_t* path, Path& out) KY_REQUIRES(world_.mutex);
  [[nodiscard]] bool remove_as(const wchar_t* path, bool folder);
  [[nodiscard]] bool move_or_book(const wchar_t* from, const wchar_t* to, std::uint32_t flags);
  [[nodiscard]] ports::ErrorCode move_now(const Path& from, const Path& to, std::uint32_t flags)
      KY_REQUIRES(world_.mutex);
  [[nodiscard]] ports::ErrorCode book_move(const Path& from, const wchar_t* to, std::uint32_t flags)
      KY_REQUIRES(world_.mutex);

  World& world_;
  HandleTable& handles_;
  ports::Errors& errors_;
  DeskCopies& copies_;
};

}  // namespace machine
