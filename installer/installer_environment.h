#pragma once

#include <initializer_list>
#include <string>

namespace launcher {

class LaunchOptions;

// Variables that get the same values in every run, whatever the user set. The mix of "f" and "1" is
// what the installer expects.
struct FixedVariable {
    const char* name;
    const char* value;
};
inline constexpr FixedVariable kFixedVariables[] = {
    {"ZEPSysIRManagementActivation", "NO"},
    {"MORAppBridge", "NO"},
    {"ZEPAdmInstDebugEnv", "f"},
    {"ZEPAdmInstDebugSummary", "f"},
    {"ZEPAdmInstDebugIndexes", "f"},
    {"ZEPAdmInstDebugAction", "f"},
    {"ZEPAdmInstDebugError", "1"},
    {"ZEPAdmInstDebugEverything", "1"},
};

// Writes what the installer reads from its environment into this process's own, which the installer
// inherits: where the media and its runtime folders lie, the operating system's folder, whether the
// user is an administrator and whether the session is interactive, and the fixed variables.
// Whatever these variables held is overwritten; the path variables are backed up first. Reports
// nothing; throws what IsAdministrator throws.
void PrepareInstallerEnvironment(const LaunchOptions& options);

// Backs up `name` and sets it to the search path of the relative `folders`: each in the media's
// per-OS folder and then in its "common" folder, and, when there is a separate installer media,
// the same again in that one. Entries are joined with ";" and not tested for existence.
void SetSearchPathVariable(const LaunchOptions& options, const std::string& name,
                           std::initializer_list<std::string> folders);

// Saves the value of the variable `name` for the installer and the programs it starts, in
// kBackupPrefix + name, as "ZEP_BAK=" + value, which makes sure that the backup exists even when
// the variable is unset or empty. A later backup overwrites an earlier one.
inline constexpr char kBackupPrefix[] = "ZEP_BAK_";
void BackupEnvVar(const std::string& name);

}  // namespace launcher
