#pragma once

#include <string>
#include <vector>

#include "fs/path.h"
#include "media/folder_names.h"
#include "media/volume_files.h"

namespace launcher::mediatool {

// The most volumes that a disc set has, or that create makes of one. The launcher has no limit.
inline constexpr int kMostVolumes = 99;

// The folders of one medium, as the user gave them.
struct MediaSet {
    Path first;               // of volume 1, where the launcher is
    std::vector<Path> given;  // all, absolute, in the order given
};

// Throws BadInput when what was given for the folder of a medium is a file.
void CheckIsNoFile(const Path& folder);

// Finds volume 1 among `folders`: the folder with the launcher. Throws BadInput when one of them
// is not there, is no folder, cannot be listed or is given twice, and when none has a launcher.
MediaSet OpenMediaSet(const std::vector<std::string>& folders);

// The same for a medium that is being made: without a launcher, the folder with the markers of
// volume 1 will do.
MediaSet OpenUnfinishedSet(const std::vector<std::string>& folders);

}  // namespace launcher::mediatool
