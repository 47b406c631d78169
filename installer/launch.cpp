#include "installer/launch.h"

#include "fs/environment.h"
#include "installer/installer_process.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "platform/administrator.h"

namespace launcher {
namespace {

// True when this user may start the installer; otherwise reports why not.
bool PassesAdministratorGate(const LaunchOptions& options) {
    if (options.softMgtReadOnly || IsAdministrator()) return true;
    if (GetEnvVar(kAllowNotAdministratorVar).empty()) {
        ReportMessage(options,
                      "The installer must be run from an elevated Command Prompt ('Run as "
                      "administrator')",
                      Severity::Error, /*noBox=*/false);
        return false;
    }
    TraceMessage(options, "The user is not admin, but continue.", Severity::Info);
    return true;
}

}  // namespace

std::int32_t LaunchInstaller(const LaunchOptions& options, const std::string& commandLine) {
    if (!PassesAdministratorGate(options)) return 1;
    InstallerProcess installer(commandLine);
    if (!installer.Start(/*consoleWindow=*/true))
        ReportLastErrorAndExit(options, commandLine, "Setup failed to create process");
    if (!options.wait) return 0;
    const std::int32_t exitCode = installer.WaitForExit();
    // A crash status is reported like a failed wait; callers never see such a code.
    if (exitCode < 0) ReportLastErrorAndExit(options, commandLine, "Cannot wait for process");
    return exitCode;
}

}  // namespace launcher
