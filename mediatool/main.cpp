#include <windows.h>

#include "mediatool/base/sentences.h"
#include "mediatool/commands.h"
#include "platform/libraries.h"

int wmain() {
    launcher::RestrictDllSearch();
    return launcher::mediatool::RunMediatool(launcher::mediatool::ArgumentsIn(GetCommandLineW()));
}
