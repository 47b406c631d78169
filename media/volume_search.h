#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fs/path.h"
#include "media/volume_numbers.h"
#include "media/volume_text.h"

namespace launcher {

class LaunchOptions;

// How the volumes of a media lie.
enum class VolumeLayout {
    NotSplit,    // in one piece, or not to be checked
    OneFolder,   // all in the folder of volume 1
    Siblings,    // in the folders "2", "3" ... beside that of volume 1
    Outer,       // in numbered outer volumes
    Incomplete,  // not found: some are missing or foreign, or nobody can tell how many there are
};

// The outer set that a media is nested in ("AM" in messages and variables).
struct OuterSet {
    VolumeNumber first;  // the outer volume that holds volume 1
    std::string id;
    Path folder;        // of that outer volume
    Path relativePath;  // from there to the parent of volume 1's folder
};

// What a search for the volumes of a media found, as far as it came.
struct FoundVolumes {
    VolumeLayout layout = VolumeLayout::Incomplete;
    std::optional<VolumeCount> count;  // nothing when "volumes.txt" was not read
    std::string id;                    // of a split media, from the marker of volume 1
    std::optional<OuterSet> outer;
    std::vector<std::string> folders;  // of volumes 2 to N, in the layouts of several folders
};

// Searches for the volumes of the media in `mediaDir`, the folder of volume 1. What it finds, and
// what is wrong, is traced; nothing else is changed. Throws nothing.
FoundVolumes FindVolumes(const LaunchOptions& options);

}  // namespace launcher
