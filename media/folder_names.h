#pragma once

#include <string>

#include "fs/path.h"

namespace launcher {

// The fixed names of a medium.
inline constexpr char kInstFolder[] = "inst";      // at the media's root
inline constexpr char kCommonFolder[] = "common";  // in "inst", beside the per-OS folders
inline constexpr char kCodeFolder[] = "code";      // in a per-OS folder
inline constexpr char kBinFolder[] = "bin";        // in "code"; holds the installer

// In "inst" of volume 1: the number of volumes of a split medium.
inline constexpr char kCountFile[] = "volumes.txt";

// What follows a volume's number in the name of its marker, "7.txt", at the volume's root.
inline constexpr char kVolumeMarkerSuffix[] = ".txt";

inline constexpr char kLauncherName[] = "setup.exe";

// The installer's part of a medium: what is copied of its root, in this order. All are required.
inline constexpr const char* kMediaEntries[] = {kInstFolder,      "meta.TOCxml", "media.xml",
                                                "media.db",       kLauncherName, "StartTUI.exe",
                                                "setup_noUAC.exe"};

// The installer `exeName` in the media `mediaDir`, in its per-OS folder.
inline Path InstallerExecutable(const Path& mediaDir, const std::string& osFolder,
                                const std::string& exeName) {
    return Join(mediaDir, {kInstFolder, osFolder, kCodeFolder, kBinFolder, exeName});
}

}  // namespace launcher
