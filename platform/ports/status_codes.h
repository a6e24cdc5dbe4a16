#pragma once

#include "platform/ports/codes.h"
#include "platform/ports/status.h"

namespace ports {

/// What Windows answers for the statuses that are named in `status`, and mr_mid_not_found for all others. For `Errors`
/// without a Windows behind them.
[[nodiscard]] constexpr ErrorCode code_of_status(Status value) {
  switch (value) {
    case status::success:
      return code::success;
    case status::unsuccessful:
      return code::gen_failure;
    case status::not_implemented:
      return code::invalid_function;
    case status::invalid_info_class:
    case status::invalid_parameter:
      return code::invalid_parameter;
    case status::invalid_handle:
      return code::invalid_handle;
    case status::no_memory:
      return code::not_enough_memory;
    case status::access_denied:
      return code::access_denied;
    case status::buffer_too_small:
      return code::insufficient_buffer;
    case status::data_error:
      return code::crc;
    case status::not_supported:
      return code::not_supported;
    case status::entry_point_not_found:
      return code::procedure_not_found;
    case status::invalid_buffer_size:
      return code::invalid_user_buffer;
    case status::not_found:
      return code::not_found;
    default:
      return code::mr_mid_not_found;
  }
}

}  // namespace ports
