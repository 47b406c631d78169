#include "launcher/installer_command_line.h"

#include <vector>

#include "fs/environment.h"
#include "fs/path.h"
#include "launcher/base/launch_options.h"

namespace launcher {
namespace {

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

void AddSoftMgtArguments(LaunchOptions& options) {
    std::vector<std::string>& args = options.installerArgs;
    args.emplace_back("--mgt");
    args.push_back(Parent(Parent(options.mediaDir)).Text());
    if (options.softMgtAction.empty()) return;
    args.emplace_back("--var");
    args.push_back("Radio_ZEPSoftwareMgtCheck?" + options.softMgtAction + "=true");
    SetEnvVar("ZEPSoftwareMgtSingleExec", "1");
    SetEnvVar("ZEPAdmTUIValue_SoftwareMgt_Resume", "!r");
}

void AddMediaArguments(LaunchOptions& options) {
    options.installerArgs.insert(options.installerArgs.begin(),
                                 {"-CDpath", options.mediaDir.Text()});
}

// What precedes the installer on its command line; empty in normal use.
std::string DebugPrefix() {
    return IsCommandLineOnlyShown() ? "cmd.exe /k echo" : GetEnvVar(kDebugVar);
}

// Adds what the launcher tells the installer; for software management also in the environment. A
// backslash at the end of an argument is doubled, so that it does not escape the closing quote.
void CompleteInstallerArgs(LaunchOptions& options) {
    if (options.softMgt)
        AddSoftMgtArguments(options);
    else
        AddMediaArguments(options);
    for (std::string& argument : options.installerArgs)
        if (argument.ends_with('\\')) argument += '\\';
}

// The debug prefix, the installer and its arguments.
std::string CommandLine(const LaunchOptions& options) {
    const std::string& exePath = options.installerExePath;
    std::string commandLine = exePath.starts_with('"') ? exePath : Quoted(exePath);
    const std::string prefix = DebugPrefix();
    if (!prefix.empty()) commandLine = prefix + " " + commandLine;
    for (const std::string& argument : options.installerArgs)
        commandLine += " " + Quoted(argument);
    return commandLine;
}

}  // namespace

bool IsCommandLineOnlyShown() {
    return GetEnvVar(kDebugVar) == "1";
}

std::string BuildInstallerCommandLine(LaunchOptions& options) {
    CompleteInstallerArgs(options);
    return CommandLine(options);
}

}  // namespace launcher
