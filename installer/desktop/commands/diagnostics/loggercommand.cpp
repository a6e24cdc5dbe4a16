#include "installer/desktop/commands/diagnostics/loggercommand.h"

#include <memory>

#include "diagnostics/error_api.h"
#include "diagnostics/log_format.h"
#include "diagnostics/logger_api.h"
#include "installer/desktop/commands/base/attributes.h"
#include "installer/desktop/commands/base/decipher.h"
#include "installer/desktop/commands/base/global_data.h"
#include "installer/desktop/commands/base/trace.h"
#include "platform/ports/codes.h"

namespace ky {

std::uint32_t CLoggerCommand::LoadCiphered(AttributeMap** map) {
  const Attributes attributes(map);
  Decrypter& decrypter = HostDecrypter();
  std::uint32_t result = attributes.LoadBase(*this);
  /// False where the load ends here.
  const auto read = [&](const wchar_t* name, auto&& take) {
    const AttributeReading reading = attributes.Read(name);
    if (!reading.present()) return true;
    result = static_cast<std::uint32_t>(reading.read);
    if (reading.read == 0) take(reading);
    return reading.read == 0;
  };
  const auto text = [&](const AttributeReading& reading) { return DecipherOrStop(decrypter, reading.text.c_str()); };
  const auto integer = [&](const AttributeReading& reading) { return DecipheredInteger(decrypter, reading); };

  static_cast<void>(read(L"isMainThread", [&](auto& reading) { isMainThread = integer(reading) != 0; }) &&
                    read(L"label", [&](auto& reading) { label.assign(text(reading)).push_back(L'.'); }) &&
                    read(L"crypt", [&](auto& reading) { crypt = text(reading); }) &&
                    read(L"length", [&](auto& reading) { length = integer(reading); }));
  return result;
}

std::uint32_t CLoggerCommand::Execute(std::uintptr_t, std::uintptr_t) {
  if (!guard.TryEnter()) {
    // Under the name of another command: readers of logs know it so.
    Trace(L"%i: %s Error: Multiple threads attempting execution.\n", index, L"Jump");
    return ports::code::internal_error;
  }
  Trace(L"%i: %s Begin execute.\n", index, L"Logger");
  std::unique_ptr<CLoggerApi, Releaser> logger(new CLoggerApi);
  if (crypt.empty() || length == 0 || !logger->SetupEncryption(crypt.c_str(), length)) {
    logger->SetXorKey(diagnostics::log_format::fall_back_key.data());
  }
  logger->SetLabel(label);
  logger->StartThreadLog(L"Installer main thread", isMainThread);
  Put<ILoggerApi*>(keys::SelfFree_LoggerApi, logger.release());
  Put<IErrorApi*>(keys::SelfFree_ErrorApi, new CErrorApi);
  executed = true;
  return ports::code::success;
}

}  // namespace ky
