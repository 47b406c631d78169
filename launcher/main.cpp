#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include "fs/owners.h"
#include "launcher/base/launch_options.h"
#include "launcher/driver.h"
#include "platform/libraries.h"

namespace {

// A command line that cannot be split leaves the defaults.
launcher::LaunchOptions OptionsFromCommandLine() {
    int argc = 0;
    const launcher::LocalMemory<wchar_t*> argv(CommandLineToArgvW(GetCommandLineW(), &argc));
    return launcher::LaunchOptions(argc, argv.Get(), launcher::kInstallerName,
                                   /*useGuiDefault=*/true,
                                   /*waitDefault=*/false);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    launcher::RestrictDllSearch();
    launcher::LaunchOptions options = OptionsFromCommandLine();
    return launcher::RunLauncher(options);
}
