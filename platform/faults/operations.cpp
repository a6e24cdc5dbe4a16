#include "platform/faults/operations.h"

#include "platform/ports/signatures.h"
#include "platform/ports/status.h"

namespace faults {

namespace {

using namespace ports::code;  // the table names the codes bare

constexpr ports::ErrorCode result_nothing = static_cast<ports::ErrorCode>(nothing);
constexpr ports::ErrorCode result_fail = static_cast<ports::ErrorCode>(fail);
constexpr ports::ErrorCode result_no_memory = static_cast<ports::ErrorCode>(no_memory);
constexpr ports::ErrorCode result_class_not_registered = static_cast<ports::ErrorCode>(class_not_registered);

constexpr ports::ErrorCode result_untrusted_root = static_cast<ports::ErrorCode>(ports::trust::untrusted_root);
constexpr ports::ErrorCode result_bad_digest = static_cast<ports::ErrorCode>(ports::trust::bad_digest);
constexpr ports::ErrorCode result_subject_not_trusted = static_cast<ports::ErrorCode>(ports::trust::subject_not_trusted);

constexpr ports::ErrorCode status_access_denied = static_cast<ports::ErrorCode>(ports::status::access_denied);
constexpr ports::ErrorCode status_entry_point_not_found =
    static_cast<ports::ErrorCode>(ports::status::entry_point_not_found);
constexpr ports::ErrorCode status_invalid_info_class = static_cast<ports::ErrorCode>(ports::status::invalid_info_class);
constexpr ports::ErrorCode status_unsuccessful = static_cast<ports::ErrorCode>(ports::status::unsuccessful);
constexpr ports::ErrorCode status_invalid_handle = static_cast<ports::ErrorCode>(ports::status::invalid_handle);
constexpr ports::ErrorCode status_invalid_parameter = static_cast<ports::ErrorCode>(ports::status::invalid_parameter);
constexpr ports::ErrorCode status_no_memory = static_cast<ports::ErrorCode>(ports::status::no_memory);
constexpr ports::ErrorCode status_buffer_too_small = static_cast<ports::ErrorCode>(ports::status::buffer_too_small);
constexpr ports::ErrorCode status_data_error = static_cast<ports::ErrorCode>(ports::status::data_error);
constexpr ports::ErrorCode status_not_supported = static_cast<ports::ErrorCode>(ports::status::not_supported);
constexpr ports::ErrorCode status_invalid_buffer_size =
    static_cast<ports::ErrorCode>(ports::status::invalid_buffer_size);
constexpr ports::ErrorCode status_not_found = static_cast<ports::ErrorCode>(ports::status::not_found);

#define KY_FAULT_CODES(identifier, name, ...) constexpr ports::ErrorCode codes_of_##identifier[] = {__VA_ARGS__};
KY_FAULT_OPERATIONS(KY_FAULT_CODES)
#undef KY_FAULT_CODES

constexpr Contract table[] = {
#define KY_FAULT_ROW(identifier, name, ...) {Operation::identifier, name, codes_of_##identifier},
    KY_FAULT_OPERATIONS(KY_FAULT_ROW)
#undef KY_FAULT_ROW
};

}  // namespace

std::span<const Contract> contracts() {
  return table;
}

const Contract& contract(Operation operation) {
  return table[static_cast<std::size_t>(operation)];
}

bool gives_back(Operation operation) {
  switch (operation) {
    case Operation::files_find_close:
    case Operation::registry_close:
    case Operation::modules_free:
    case Operation::waits_close:
    case Operation::winapi_close_handle:
      return true;
    default:
      return false;
  }
}

}  // namespace faults
