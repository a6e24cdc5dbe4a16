#include "ky/factories.h"

#include "installer/desktop/commands/data/commandlineparsercommand.h"
#include "installer/desktop/commands/data/evaluatecommand.h"
#include "installer/desktop/commands/data/getdatetimecommand.h"
#include "installer/desktop/commands/data/getstringfromxmlcommand.h"
#include "installer/desktop/commands/data/loadfilesfromresourcescommand.h"
#include "installer/desktop/commands/diagnostics/clearoldlogscommand.h"
#include "installer/desktop/commands/diagnostics/crashhandlercommand.h"
#include "installer/desktop/commands/diagnostics/loggercommand.h"
#include "installer/desktop/commands/files/deletefilecommand.h"
#include "installer/desktop/commands/files/pathexistscommand.h"
#include "installer/desktop/commands/flow/jumpcommand.h"
#include "installer/desktop/commands/flow/nopcommand.h"
#include "installer/desktop/commands/process/closeprocess.h"
#include "installer/desktop/commands/process/closeprocesses.h"

#define KY_DEFINE_FACTORY(stem, command)       \
  ky::CInstallCommand* GetC##stem##Command() { \
    return new ky::command();                  \
  }
KY_FACTORIES(KY_DEFINE_FACTORY)
#undef KY_DEFINE_FACTORY
