#include "launcher/temporary_copy.h"

#include <exception>
#include <string>

#include "fs/copy.h"
#include "fs/environment.h"
#include "fs/path.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "launcher/uuid_text.h"
#include "media/folder_names.h"

namespace launcher {
namespace {

constexpr char kOriginalMediaDirVar[] = "ZEPAdmInstOriginalMediaDir";

void CopyMediaEntries(const LaunchOptions& options, const std::string& temporaryDir) {
    try {
        for (const std::string entry : kMediaEntries)
            Copy(Join(options.mediaDir, entry).Text(), temporaryDir + entry);
    } catch (const std::exception& failure) {
        ReportMessage(options,
                      "Cannot copy the installer to a temporary directory: " + temporaryDir,
                      Severity::Error, /*noBox=*/false);
        ReportErrorAndExit(options, failure.what());
    }
}

// Adds a folder of the separate installer media to the copy. A medium without that folder may still
// be complete, and the installer itself says what it misses.
void CopyInstallerFolder(const LaunchOptions& options, const std::string& temporaryDir,
                         const std::string& folder) {
    try {
        // `mediaInstDir` ends in a backslash already; Windows accepts the doubled one.
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
        InstallerExecutable(options.mediaDir, options.osFolder, options.installerExeName).Text();
}

}  // namespace

std::string NewTemporaryFolderName() {
    return GetEnvVar("TEMP") + kBackslash + NewUuidText(/*upperCase=*/true) + kBackslash;
}

bool IsCopyForbidden() {
    return !GetEnvVar(kDontCopyVar).empty();
}

void CopyInstallerToTemporaryFolder(LaunchOptions& options, const std::string& temporaryDir) {
    if (IsCopyForbidden() || options.skipTemporaryCopy) {
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

}  // namespace launcher
