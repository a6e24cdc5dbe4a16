#pragma once

#include "platform/faults/faulty.h"
#include "platform/ports/files.h"

namespace faults {

/// Files whose calls fail by plan.
class FaultyFiles final : public Faulty<ports::Files> {
 public:
  using Faulty::Faulty;

  ports::Handle open(const wchar_t* path, std::uint32_t access, std::uint32_t share, ports::Disposition disposition,
                     std::uint32_t flags) override {
    return ask(Operation::files_open, ports::Handle::invalid,
               [&] { return inner_.open(path, access, share, disposition, flags); });
  }
  bool read(ports::Handle file, std::span<std::uint8_t> into, std::uint32_t& got) override {
    return ask(Operation::files_read, false, [&] { return inner_.read(file, into, got); });
  }
  bool write(ports::Handle file, std::span<const std::uint8_t> bytes, std::uint32_t& written) override {
    return ask(Operation::files_write, false, [&] { return inner_.write(file, bytes, written); });
  }
  bool flush(ports::Handle file) override {
    return ask(Operation::files_flush, false, [&] { return inner_.flush(file); });
  }
  bool information(ports::Handle file, ports::FileInformation& out) override {
    return ask(Operation::files_information, false, [&] { return inner_.information(file, out); });
  }
  ports::Status case_sensitivity(ports::Handle folder, std::uint32_t& flags) override {
    return answer(Operation::files_case_sensitivity, [&] { return inner_.case_sensitivity(folder, flags); });
  }
  bool identity(ports::Handle file, ports::FileIdentity& out) override {
    return ask(Operation::files_identity, false, [&] { return inner_.identity(file, out); });
  }
  bool mark_deleted(ports::Handle file) override {
    return ask(Operation::files_mark_deleted, false, [&] { return inner_.mark_deleted(file); });
  }
  bool set_attributes_of(ports::Handle file, std::uint32_t attributes) override {
    return ask(Operation::files_set_attributes_of, false, [&] { return inner_.set_attributes_of(file, attributes); });
  }
  bool rename(ports::Handle file, const wchar_t* to) override {
    return ask(Operation::files_rename, false, [&] { return inner_.rename(file, to); });
  }
  std::uint32_t attributes(const wchar_t* path) override {
    return ask(Operation::files_attributes, ports::file_attribute::invalid, [&] { return inner_.attributes(path); });
  }
  bool set_attributes(const wchar_t* path, std::uint32_t attributes) override {
    return ask(Operation::files_set_attributes, false, [&] { return inner_.set_attributes(path, attributes); });
  }
  bool exists(const wchar_t* path) override {
    return ask(Operation::files_exists, false, [&] { return inner_.exists(path); });
  }
  bool remove(const wchar_t* path) override {
    return ask(Operation::files_remove, false, [&] { return inner_.remove(path); });
  }
  bool remove_folder(const wchar_t* path) override {
    return ask(Operation::files_remove_folder, false, [&] { return inner_.remove_folder(path); });
  }
  bool create_folder(const wchar_t* path) override {
    return ask(Operation::files_create_folder, false, [&] { return inner_.create_folder(path); });
  }
  bool create_link(const wchar_t* link, const wchar_t* target, bool to_folder) override {
    return ask(Operation::files_create_link, false, [&] { return inner_.create_link(link, target, to_folder); });
  }
  bool move(const wchar_t* from, const wchar_t* to, std::uint32_t flags) override {
    return ask(Operation::files_move, false, [&] { return inner_.move(from, to, flags); });
  }
  std::uint32_t temp_folder(std::span<wchar_t> into) override {
    return ask(Operation::files_temp_folder, std::uint32_t{0}, [&] { return inner_.temp_folder(into); });
  }
  std::uint32_t temp_file(const wchar_t* folder, const wchar_t* prefix, std::uint32_t unique,
                          std::span<wchar_t, 260> into) override {
    return ask(Operation::files_temp_file, std::uint32_t{0},
               [&] { return inner_.temp_file(folder, prefix, unique, into); });
  }
  ports::Handle find_first(const wchar_t* pattern, ports::FolderRow& row) override {
    return ask(Operation::files_find_first, ports::Handle::invalid, [&] { return inner_.find_first(pattern, row); });
  }
  bool list(ports::Handle folder, bool restart, std::vector<ports::FolderRow>& rows) override {
    return ask(Operation::files_list, false, [&] { return inner_.list(folder, restart, rows); });
  }
  bool find_next(ports::Handle search, ports::FolderRow& row) override {
    return ask(Operation::files_find_next, false, [&] { return inner_.find_next(search, row); });
  }
  bool find_close(ports::Handle search) override {
    return ask(Operation::files_find_close, false, [&] { return inner_.find_close(search); });
  }
};

}  // namespace faults
