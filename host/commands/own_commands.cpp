#include "host/commands/own_commands.h"

#include "host/commands/deletefoldercommand.h"
#include "host/commands/deleteregkeycommand.h"
#include "host/commands/deleteregvaluecommand.h"
#include "host/commands/runcommandcommand.h"
#include "host/commands/setprogresscommand.h"
#include "host/commands/setvariablecommand.h"

namespace host {

namespace {

template <class Command>
ky::CInstallCommand* make() {
  return new Command();
}

constexpr NamedFactory table[] = {
    {"DeleteFolder", &make<CDeleteFolderCommand>},     {"DeleteRegKey", &make<CDeleteRegKeyCommand>},
    {"DeleteRegValue", &make<CDeleteRegValueCommand>}, {"RunCommand", &make<CRunCommandCommand>},
    {"SetProgress", &make<CSetProgressCommand>},       {"SetVariable", &make<CSetVariableCommand>},
};

}  // namespace

std::span<const NamedFactory> own_commands() {
  return table;
}

}  // namespace host
