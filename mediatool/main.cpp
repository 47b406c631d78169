#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <string>
#include <vector>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/commands.h"
#include "platform/libraries.h"

// Split as the launcher splits its own command line: the C runtime may expand wildcards and has
// other ideas of quotes, and what is meant for the launcher must arrive as it would there.
int wmain() {
    launcher::RestrictDllSearch();
    int count = 0;
    const launcher::LocalMemory<wchar_t*> split(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(launcher::ToNarrow(split.Get()[i]));
    return launcher::mediatool::RunMediatool(arguments);
}
