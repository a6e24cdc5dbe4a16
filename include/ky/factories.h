#pragma once

#include <string_view>

#include "ky/install_command.h"

/// How the library's build marks its exports; a host includes this header as it is.
#ifndef KY_EXPORT
#define KY_EXPORT
#endif

// clang-format off
/// The exported factories: FACTORY(export's stem, class). A script's element `Stem` is made by `GetC<Stem>Command`.
/// Two stems differ from their class's name on purpose: hosts look for them.
#define KY_FACTORIES(FACTORY) \
  FACTORY(ClearOldLogs, CClearOldLogsCommand) \
  FACTORY(CloseProcess, CCloseProcess) \
  FACTORY(CloseProcesses, CCloseProcessesCommand) \
  FACTORY(CommandLineParser, CCommandLineParserCommand) \
  FACTORY(CrashHandler, CCrashHandlerCommand) \
  FACTORY(DeleteFile, CDeleteFileCommand) \
  FACTORY(Evaluate, CEvaluateCommand) \
  FACTORY(GetDateTime, CGetDateTimeCommand) \
  FACTORY(GetStringFromXml, CGetStringFromXmlCommand) \
  FACTORY(Jump, CJumpCommand) \
  FACTORY(LoadFilesFromResources, CLoadFilesFromResourcesCommand) \
  FACTORY(Logger, CLoggerCommand) \
  FACTORY(Nop, CNopCommand) \
  FACTORY(PathExists, CPathExistsCommand)
// clang-format on

#define KY_DECLARE_FACTORY(stem, command) extern "C" KY_EXPORT ky::CInstallCommand* GetC##stem##Command();
KY_FACTORIES(KY_DECLARE_FACTORY)
#undef KY_DECLARE_FACTORY

namespace ky {

/// Makes a new command, owned by the caller and released with `SelfFree`. Fails only by the allocator's exception.
using Factory = CInstallCommand* (*)();

/// A factory and the element name that it serves.
struct NamedFactory {
  std::string_view stem;
  Factory make = nullptr;
};

}  // namespace ky
