#pragma once

#include <string>
#include <vector>

#include "fs/path.h"
#include "mediatool/media/markers.h"

namespace launcher::mediatool {

inline constexpr char kLauncherName[] = "setup.exe";
inline constexpr char kInstallerName[] = "ZEPInsAppliGUI.exe";

// The folders of one media, as the user gave them.
struct MediaSet {
    Path first;               // of volume 1, where the launcher is
    std::vector<Path> given;  // all, absolute, in the order given
};

// Finds volume 1 among `folders`: the folder with the launcher. Throws BadInput when one of them
// is not there, is no folder, cannot be listed or is given twice, and when none has a launcher.
MediaSet OpenMediaSet(const std::vector<std::string>& folders);

// The same for a media that is being made: without a launcher, the folder with the markers of
// volume 1 will do.
MediaSet OpenUnfinishedSet(const std::vector<std::string>& folders);

}  // namespace launcher::mediatool
