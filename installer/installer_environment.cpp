#include "installer/installer_environment.h"

#include "fs/environment.h"
#include "fs/path.h"
#include "launcher/base/launch_options.h"
#include "media/folder_names.h"
#include "platform/administrator.h"

namespace launcher {
namespace {

constexpr char kListSeparator[] = ";";

void BackupAndSet(const std::string& name, const std::string& value) {
    BackupEnvVar(name);
    SetEnvVar(name, value);
}

// Appends each folder below the per-OS prefix and below the common one.
void AppendEntries(std::string& list, const std::string& osPrefix, const std::string& commonPrefix,
                   std::initializer_list<std::string> folders) {
    for (const std::string& folder : folders) {
        if (!list.empty()) list += kListSeparator;
        list += osPrefix + folder + kListSeparator + commonPrefix + folder;
    }
}

void SetMediaVariables(const LaunchOptions& options) {
    const std::string instFolder = Join(options.mediaDir, kInstFolder).Text();
    const std::string installPath = instFolder + kBackslash + options.osFolder;
    SetEnvVar("ZEPAdmInstCurrentMediaDir", options.mediaDir.Text());
    BackupAndSet("MORInst", instFolder);
    BackupAndSet("MORInstaller", options.mediaInstDir);
    BackupAndSet("MORInstallPath", installPath);
    SetSearchPathVariable(options, "MORDictionaryPath", {"code\\dictionary"});
    SetSearchPathVariable(options, "MORReffilesPath", {"reffiles"});
    SetSearchPathVariable(
        options, "MORGraphicPath",
        {"resources\\graphic", "resources\\graphic\\icons", "resources\\graphic\\splashscreens"});
    SetSearchPathVariable(options, "MORMsgCatalogPath", {"resources\\msgcatalog"});
    // The separator stays even when there was no PATH.
    BackupAndSet("PATH", installPath + kBackslash + kCodeFolder + kBackslash + kBinFolder +
                             kListSeparator + GetEnvVar("PATH"));
}

void SetFixedVariables() {
    for (const FixedVariable& variable : kFixedVariables)
        SetEnvVar(variable.name, variable.value);
}

void SetSessionVariables(const LaunchOptions& options) {
    SetEnvVar("ZEP_OS", options.osFolder);
    SetEnvVar("ZEPIns_HasElevatedPrivileges", IsAdministrator() ? "1" : "0");
    SetEnvVar("ZEPIns_IsInteractiveSession", options.interactiveSession ? "1" : "0");
}

}  // namespace

void PrepareInstallerEnvironment(const LaunchOptions& options) {
    SetMediaVariables(options);
    SetFixedVariables();
    SetSessionVariables(options);
}

void SetSearchPathVariable(const LaunchOptions& options, const std::string& name,
                           std::initializer_list<std::string> folders) {
    BackupEnvVar(name);
    const Path instFolder = Join(options.mediaDir, kInstFolder);
    std::string list;
    AppendEntries(list, Join(instFolder, options.osFolder).Text() + kBackslash,
                  Join(instFolder, kCommonFolder).Text() + kBackslash, folders);
    const std::string& installerInst = options.mediaInstDir;  // ends in a backslash
    if (!installerInst.empty())
        AppendEntries(list, installerInst + options.osFolder + kBackslash,
                      installerInst + kCommonFolder + kBackslash, folders);
    SetEnvVar(name, list);
}

void BackupEnvVar(const std::string& name) {
    SetEnvVar(kBackupPrefix + name, "ZEP_BAK=" + GetEnvVar(name));
}

}  // namespace launcher
