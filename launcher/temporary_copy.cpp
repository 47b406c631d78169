#include "launcher/temporary_copy.h"

#include <windows.h>

#include <exception>
#include <string>

#include "fs/environment.h"
#include "fs/file_operations.h"
#include "fs/owners.h"
#include "fs/path.h"
#include "fs/text.h"
#include "launcher/launch_options.h"
#include "launcher/message.h"
#include "launcher/uuid_text.h"
#include "media/layout.h"

namespace launcher {
namespace {

constexpr char kOriginalMediaDirVar[] = "ZEPAdmInstOriginalMediaDir";

// The installer's part of a media, in the order in which it is copied. All are required.
constexpr const char* kMediaEntries[] = {kInstFolder, "meta.TOCxml",  "media.xml",      "media.db",
                                         "setup.exe", "StartTUI.exe", "setup_noUAC.exe"};

void CopyMediaEntries(LaunchOptions& options, const std::string& temporaryDir) {
    try {
        for (const std::string entry : kMediaEntries)
            Copy(Join(options.mediaDir, entry).Text(), temporaryDir + entry);
    } catch (const std::exception& failure) {
        ReportMessage(options,
                      "Cannot copy the installer to a temporary directory: " + temporaryDir,
                      Severity::Error, false);
        ReportErrorAndExit(options, failure.what());
    }
}

// Adds a folder of the separate installer media to the copy. A media without that folder is whole
// all the same, and the installer itself says what it misses.
void CopyInstallerFolder(const LaunchOptions& options, const std::string& temporaryDir,
                         const std::string& folder) {
    try {
        // `mediaInstDir` ends in a backslash already; Windows takes the doubled one.
        Copy(options.mediaInstDir + kBackslash + folder,
             temporaryDir + kInstFolder + kBackslash + folder);
    } catch (const std::exception&) {
    }
}

void MoveOntoCopy(LaunchOptions& options, const std::string& temporaryDir) {
    options.temporaryCopyMade = true;
    SetEnvVar(kOriginalMediaDirVar, options.mediaDir.Text());
    options.mediaDir = Path(temporaryDir);
    options.installerExePath =
        InstallerPath(options.mediaDir, options.osFolder, options.installerExeName).Text();
}

}  // namespace

std::string NewTemporaryDirName() {
    return GetEnvVar("TEMP") + kBackslash + NewUuidText(true) + kBackslash;
}

void CopyInstallerToTemporaryDir(LaunchOptions& options, const std::string& temporaryDir) {
    if (!GetEnvVar("ZEPAdmInstDontCopyInstaller").empty() || options.skipTemporaryCopy) {
        SetEnvVar(kOriginalMediaDirVar, "");
        return;
    }
    CopyMediaEntries(options, temporaryDir);
    if (!options.mediaInstDir.empty()) {
        CopyInstallerFolder(options, temporaryDir, kCommonFolder);
        CopyInstallerFolder(options, temporaryDir, options.osFolder);
    }
    MoveOntoCopy(options, temporaryDir);
}

void WriteRemoveScript(const std::string& temporaryDir) {
    const FileHandle file(CreateFileW(ToWide(temporaryDir + "remove.bat").c_str(), GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return;
    const std::string inst = "\"" + temporaryDir + kInstFolder + "\"";
    const std::string script =
        ":begin\r\n"
        "rmdir /Q /S " +
        inst +
        " 1>nul 2>nul\r\n"
        "if exist " +
        inst +
        " goto begin\r\n"
        "rmdir /Q /S \"" +
        temporaryDir + "\" 1>nul 2>nul\r\n";
    DWORD written = 0;
    WriteFile(file.Get(), script.data(), static_cast<DWORD>(script.size()), &written, nullptr);
}

}  // namespace launcher
