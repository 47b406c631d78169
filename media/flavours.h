#pragma once

#include <string>
#include <vector>

#include "fs/path.h"

namespace launcher {

class LaunchOptions;

// A marker's name is that of the per-OS folder, and this.
inline constexpr char kFlavourMarkerExtension[] = ".installos";

// A file to take for every flavour's marker.
inline constexpr char kFlavourMarkerVar[] = "ZEPAdmInstODTinstallOSpath";

// One operating-system flavour of a medium: a per-OS folder below "inst" with the installer for it,
// and a flavour marker, whose existence says that the media, or the separate installer media it
// needs, is made for that flavour.
struct Flavour {
    std::string osFolder;  // "win_b64", for instance
    bool needs64BitWindows;
    std::string installer;  // full path of the executable, which need not be there
    std::string marker;     // full path of the file "inst\common\" + osFolder + ".installos"
};

// Whether a flavour's installer runs on this Windows.
constexpr bool Suits(const Flavour& flavour, bool is64BitWindows) {
    return is64BitWindows || !flavour.needs64BitWindows;
}

// The flavours that the media in `mediaDir` may have, the preferred one first, with the places of
// the installer `exeName`. `givenMarker`, unless it is empty, is the flavour marker of all of them.
std::vector<Flavour> FlavoursIn(const Path& mediaDir, const std::string& exeName,
                                const std::string& givenMarker = {});

// Those of this run: while kFlavourMarkerVar is set, its value, as it is given, is the marker.
std::vector<Flavour> MediaFlavours(const LaunchOptions& options);

}  // namespace launcher
