#pragma once

#include "platform/ports/inspection.h"
#include "platform/ports/system.h"
#include "platform/record/ledger.h"
#include "platform/record/process_book.h"

namespace record {

/// An inspection whose answers go into the book of processes. What is opened to be dealt with is named in the ledger.
class RecordingInspection final : public ports::ProcessInspection {
 public:
  RecordingInspection(const ports::System& inner, Ledger& ledger, ProcessBook& book)
      : inner_(inner.inspection), errors_(inner.errors), ledger_(ledger), book_(book) {}

  bool first(ports::Handle snapshot, ports::ProcessRow& row) override;
  bool next(ports::Handle snapshot, ports::ProcessRow& row) override;
  ports::Handle open(std::uint32_t access, std::uint32_t id) override;
  std::uint32_t image_path(ports::Handle process, std::span<wchar_t> into) override;
  std::uint32_t image_device_path(ports::Handle process, std::span<wchar_t> into) override;
  ports::Status basic_information(ports::Handle process, ports::ProcessBasicInformation& out,
                                  std::uint32_t& returned) override;

  ports::Handle snapshot() override { return inner_.snapshot(); }
  ports::Handle current() override { return inner_.current(); }
  bool is_wow64(ports::Handle process, bool& out) override { return inner_.is_wow64(process, out); }
  bool read_memory(ports::Handle process, std::uint64_t address, std::span<std::uint8_t> into) override {
    return inner_.read_memory(process, address, into);
  }

 private:
  std::uint32_t note_path(ports::Handle process, std::span<wchar_t> into, std::uint32_t length);

  ports::ProcessInspection& inner_;
  ports::Errors& errors_;
  Ledger& ledger_;
  ProcessBook& book_;
};

}  // namespace record
