#include "tests/launcher/fake_machine.h"

#include <windows.h>

#include "fs/environment.h"
#include "fs/path_exists.h"
#include "installer/folder_dialog.h"
#include "launcher/choose_installer.h"
#include "media/installer_media.h"
#include "platform/architecture.h"
#include "tests/launcher/fake_messages.h"
#include "tests/launcher/journal.h"

namespace launcher {

using test::machine;
using test::Record;

bool PathExists(const std::string& path) {
    return machine.files.contains(path);
}

bool Is64BitWindows() {
    return machine.is64Bit;
}

bool LocateInstaller(LaunchOptions& options, const std::string& folder, bool quiet) {
    Record("look in \"" + folder + "\"" + (quiet ? " quietly" : "") + " for " + options.osFolder);
    if (!machine.installers.contains(folder)) return false;
    options.installerExePath = test::kLocatedExe;
    return true;
}

bool SelectInstallerFolder(LaunchOptions& options) {
    Record("dialog for " + options.osFolder);
    if (machine.picked) options.installerExePath = test::kLocatedExe;
    return machine.confirmed;
}

namespace test {
FakeMachine machine;

ChooseInstallerTest::ChooseInstallerTest() : options_(ParseOptions({})) {
    machine = {};
    for (const char* variable :
         {"ZEPAdmInstODTinstallOSpath", "ZEP_UseExternalInstaller", "ZEP_TALVOR_Installer"})
        SetEnvVar(variable, "");
    Restart();
}

void ChooseInstallerTest::Restart() {
    ClearJournal();
    options_ = ParseOptions({}, false);
    options_.mediaDir = Path("M:");
}

bool ChooseInstallerTest::Find() {
    try {
        ChooseInstaller(options_);
        return true;
    } catch (const ProcessExit& exit) {
        EXPECT_EQ(exit.code, 1);
        EXPECT_THAT(Journal().back(), testing::StartsWith("error: "));
        return false;
    }
}

}  // namespace test
}  // namespace launcher
