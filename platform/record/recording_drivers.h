#pragma once

#include "platform/ports/driver_store.h"
#include "platform/record/ledger.h"

namespace record {

/// A driver store that watches the packages that are looked up: other programs remove them.
class RecordingDrivers final : public ports::DriverStore {
 public:
  RecordingDrivers(const ports::System& inner, Ledger& ledger)
      : inner_(inner.drivers), errors_(inner.errors), ledger_(ledger) {}

  bool inf_location(const wchar_t* inf, std::span<wchar_t> into, std::uint32_t& required) override {
    if (!inner_.inf_location(inf, into, required)) return false;
    const KeptError kept(errors_);
    ledger_.watch_driver(inf);
    return true;
  }

 private:
  ports::DriverStore& inner_;
  ports::Errors& errors_;
  Ledger& ledger_;
};

}  // namespace record
