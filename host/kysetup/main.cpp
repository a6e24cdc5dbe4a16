#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "host/factories.h"
#include "host/host_keys.h"
#include "host/session.h"
#include "installer/utils/base/process/signer.h"
#include "installer/utils/base/resources/resource_text.h"
#include "installer/utils/base/strings/format.h"
#include "installer/utils/base/strings/utf8.h"
#include "platform/ports/build.h"
#include "platform/ports/files.h"
#include "platform/ports/modules.h"
#include "platform/win32/library_search.h"

namespace {

constexpr wchar_t library_name[] = L"kycommands.dll";
constexpr std::uint16_t script_resource = 20003;

int fail(const std::string& reason) {
  std::fprintf(stderr, "kysetup: %s\n", reason.c_str());
  return 1;
}

/// Why a library that is not loaded is refused, in one line; empty where it is not.
std::string refusal(const std::wstring& path, const std::wstring& own_signer) {
  if (own_signer.empty()) return {};
  std::error_code error;
  if (!base::process::IsFileTrusted(path, error)) {
    if (!ports::system().files.exists(path.c_str())) return {};
    // A subject that is not trusted is told without a code.
    return "its signature is not trusted" +
           (error ? ", result " + base::strings::to_utf8(
                                      base::strings::format(L"0x%08x", static_cast<std::uint32_t>(error.value())))
                  : std::string());
  }
  const base::process::SignerInfo signer = base::process::ReadSignerInfo(path, error);
  if (signer.signing.subject == own_signer) return {};
  return "it is signed by '" + base::strings::to_utf8(signer.signing.subject) + "' and this program by '" +
         base::strings::to_utf8(own_signer) + "'";
}

/// Loads the library if it is of this program's signer; one that nobody signed loads what it is told. Where libraries
/// that it needs are looked for is settled for the whole process.
ports::Module load_library(const ports::System& world, const std::wstring& path, std::string& reason) {
  ports::bind(world);
  const base::process::SignerInfo& own = base::process::GetOwnSignerInfo();
  const ports::Module library = base::process::LoadLibraryFromSameSigner(path, own);
  if (library == ports::Module::null) {
    const ports::ErrorCode error = world.errors.last();
    const std::string refused = refusal(path, own.signing.subject);
    reason = base::strings::to_utf8(path) +
             (refused.empty() ? " does not load, error " + std::to_string(error) : " is refused: " + refused);
  }
  ports::unbind();
  return library;
}

/// The enciphered script out of the library's resources.
std::optional<std::string_view> read_script(std::string& reason) {
  try {
    const auto document = ky::res::document_part(ky::res::resource_bytes(script_resource));
    if (!document) reason = "the script in kycommands.dll is empty";
    return document;
  } catch (const std::system_error& error) {
    reason = std::string("the script cannot be read out of kycommands.dll, ") + error.what();
    return std::nullopt;
  }
}

int run_script(host::Session& session) {
  std::string reason = session.start(host::built_in_script_key());
  if (!reason.empty()) return fail(reason);
  const std::optional<std::string_view> script = read_script(reason);
  if (!script) return fail(reason);

  const std::vector<host::ScriptFault> faults = session.load(*script);
  for (const host::ScriptFault& fault : faults) fail("the script is refused: " + describe(fault));
  if (!faults.empty()) return 1;

  host::RunObserver nobody;
  const host::RunResult result = session.run(nobody);
  if (!result.reason.empty()) {
    const host::ProgramStep& last = session.program().steps()[result.position];
    fail("the run ended at command " + std::to_string(last.index) + " (" + last.name + "): " + result.reason);
  }
  session.release();
  return session.return_code();
}

}  // namespace

extern "C" int wmain(int, wchar_t**) {
  if (!win32::restrict_library_search()) return fail("the search for libraries cannot be restricted");
  const ports::System* world = ports::real_system(ports::Module::null);
  const std::wstring path = host::folder_of(world->modules.file_name(world->modules.main())) + library_name;
  std::string reason;
  const ports::Module library = load_library(*world, path, reason);
  if (library == ports::Module::null) return fail(reason);
  // From here on the library is one of the store's modules, which unloads it when nothing of it is left.
  world = ports::real_system(library);
  const host::ModuleFactories factories(world->modules, library);
  host::Session session(*world, factories);
  return run_script(session);
}
