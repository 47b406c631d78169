#include "installer/launch.h"

#include <windows.h>

#include <utility>

#include "fs/environment.h"
#include "fs/text.h"
#include "launcher/launch_options.h"
#include "launcher/message.h"
#include "platform/administrator.h"

namespace launcher {
namespace {

// True when this user may start the installer; otherwise says why not.
bool PassesAdministratorGate(LaunchOptions& options) {
    if (options.softMgtReadOnly || IsAdministrator()) return true;
    if (GetEnvVar("ZEPAdmInstAllowNotAdminUser").empty()) {
        ReportMessage(options,
                      "The installer must be run from an elevated Command Prompt ('Run as "
                      "administrator')",
                      Severity::Error, false);
        return false;
    }
    TraceMessage(options, "The user is not admin, but continue.", Severity::Info);
    return true;
}

}  // namespace

std::int32_t LaunchInstaller(LaunchOptions& options, const std::string& commandLine) {
    if (!PassesAdministratorGate(options)) return 1;
    InstallerProcess installer(commandLine);
    if (!installer.Start(true))
        ReportLastErrorAndExit(options, commandLine, "Setup failed to create process");
    if (!options.wait) return 0;
    const std::int32_t exitCode = installer.WaitForExit();
    // A crash status is reported like a failed wait; callers rely on never seeing one.
    if (exitCode < 0) ReportLastErrorAndExit(options, commandLine, "Cannot wait for process");
    return exitCode;
}

InstallerProcess::InstallerProcess(std::string commandLine)
    : commandLine_(std::move(commandLine)) {}

bool InstallerProcess::Start(bool consoleWindow) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.wShowWindow = SW_SHOW;  // without STARTF_USESHOWWINDOW, only a wish
    bool started = false;
    DWORD error = ERROR_SUCCESS;
    {
        std::wstring buffer = ToWide(commandLine_);  // Windows may write into it
        started = CreateProcessW(nullptr, buffer.data(), nullptr, nullptr, TRUE,
                                 consoleWindow ? 0 : CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                                 &process_) != 0;
        error = GetLastError();
    }
    SetLastError(error);  // what the caller reports, unchanged by the buffer's release
    return started;
}

std::int32_t InstallerProcess::WaitForExit() {
    WaitForSingleObject(process_.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return static_cast<std::int32_t>(code);
}

}  // namespace launcher
