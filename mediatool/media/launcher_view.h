#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fs/path.h"
#include "media/volume_files.h"

namespace launcher::mediatool {

// How the volumes of a media lie, for the launcher.
enum class Layout {
    NotSplit,    // an ordinary media
    OneFolder,   // all markers in volume 1's folder
    Siblings,    // the folders "2", "3" ... beside volume 1's
    Outer,       // in numbered outer volumes
    Incomplete,  // volumes are missing or wrong
};

// As it is written in outputs: "one-folder".
std::string LayoutName(Layout layout);

// What the launcher itself makes of the volumes of a media. This is its own search, with its
// messages thrown away.
struct LauncherView {
    Layout layout = Layout::NotSplit;
    std::optional<VolumeCount> count;  // of the count file; nothing without one that it can read
    std::vector<std::string> folders;  // of the volumes found, volume 1 first; only volume 1's
                                       // while the media is not whole
    bool copies = false;               // it copies the installer before it starts it
};
LauncherView ViewOf(const Path& media);

}  // namespace launcher::mediatool
