#pragma once

#include <cstdint>

#include "platform/ports/types.h"

namespace ports {

/// How a thread takes part in COM, with the values of the system.
enum class ComModel : std::uint32_t {
  multithreaded = 0,       // COINIT_MULTITHREADED
  apartment_threaded = 2,  // COINIT_APARTMENTTHREADED
};

/// Levels of `Com::initialize_security`, with the values of the system.
namespace com_security {
inline constexpr std::uint32_t packet_privacy = 6;  // RPC_C_AUTHN_LEVEL_PKT_PRIVACY
inline constexpr std::uint32_t impersonate = 3;     // RPC_C_IMP_LEVEL_IMPERSONATE
}  // namespace com_security

/// The COM library, for the calling thread.
class Com {
 public:
  virtual ~Com() = default;

  /// CoInitializeEx: ok, nothing (it was initialised alike before), or changed_mode (it was initialised otherwise).
  /// `uninitialize` undoes a call that did not fail.
  [[nodiscard]] virtual Result initialize(ComModel model) = 0;
  virtual void uninitialize() = 0;

  /// CoInitializeSecurity for the process, without descriptor, services or capabilities. Fails with too_late once it is
  /// settled, not_initialized.
  [[nodiscard]] virtual Result initialize_security(std::uint32_t authentication_level,
                                                   std::uint32_t impersonation_level) = 0;
};

}  // namespace ports
