#pragma once

#include "platform/ports/files.h"
#include "platform/record/ledger.h"

namespace record {

/// Files whose changes go into the ledger.
class RecordingFiles final : public ports::Files {
 public:
  RecordingFiles(const ports::System& inner, Ledger& ledger)
      : inner_(inner.files), errors_(inner.errors), ledger_(ledger), system_(inner) {}

  ports::Handle open(const wchar_t* path, std::uint32_t access, std::uint32_t share, ports::Disposition disposition,
                     std::uint32_t flags) override;
  bool mark_deleted(ports::Handle file) override;
  bool set_attributes_of(ports::Handle file, std::uint32_t attributes) override;
  bool rename(ports::Handle file, const wchar_t* to) override;
  bool set_attributes(const wchar_t* path, std::uint32_t attributes) override;
  bool remove(const wchar_t* path) override;
  bool remove_folder(const wchar_t* path) override;
  bool create_folder(const wchar_t* path) override;
  bool create_link(const wchar_t* link, const wchar_t* target, bool to_folder) override;
  bool move(const wchar_t* from, const wchar_t* to, std::uint32_t flags) override;
  std::uint32_t temp_file(const wchar_t* folder, const wchar_t* prefix, std::uint32_t unique,
                          std::span<wchar_t, 260> into) override;

  // What changes nothing, or only what `open` has watched already.
  bool read(ports::Handle file, std::span<std::uint8_t> into, std::uint32_t& got) override {
    return inner_.read(file, into, got);
  }
  bool write(ports::Handle file, std::span<const std::uint8_t> bytes, std::uint32_t& written) override {
    return inner_.write(file, bytes, written);
  }
  bool flush(ports::Handle file) override { return inner_.flush(file); }
  bool information(ports::Handle file, ports::FileInformation& out) override { return inner_.information(file, out); }
  ports::Status case_sensitivity(ports::Handle folder, std::uint32_t& flags) override {
    return inner_.case_sensitivity(folder, flags);
  }
  bool identity(ports::Handle file, ports::FileIdentity& out) override { return inner_.identity(file, out); }
  std::uint32_t attributes(const wchar_t* path) override { return inner_.attributes(path); }
  bool exists(const wchar_t* path) override { return inner_.exists(path); }
  std::uint32_t temp_folder(std::span<wchar_t> into) override { return inner_.temp_folder(into); }
  ports::Handle find_first(const wchar_t* pattern, ports::FolderRow& row) override {
    return inner_.find_first(pattern, row);
  }
  bool list(ports::Handle folder, bool restart, std::vector<ports::FolderRow>& rows) override {
    return inner_.list(folder, restart, rows);
  }
  bool find_next(ports::Handle search, ports::FolderRow& row) override { return inner_.find_next(search, row); }
  bool find_close(ports::Handle search) override { return inner_.find_close(search); }

 private:
  void watch(const wchar_t* path);
  void watch_tree(const wchar_t* from, const wchar_t* to);
  [[nodiscard]] std::string kind_of(const std::wstring& path, const char* otherwise);
  [[nodiscard]] bool is_log(const wchar_t* path);
  bool note_deletion(const std::string& kind, const std::wstring& path, bool done);

  ports::Files& inner_;
  ports::Errors& errors_;
  Ledger& ledger_;
  const ports::System& system_;
};

}  // namespace record
