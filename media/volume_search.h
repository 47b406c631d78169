#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fs/path.h"
#include "media/volume_numbers.h"
#include "media/volume_text.h"

namespace launcher {

enum class CopySkipped : int;
class LaunchOptions;

// While it is set, volumes are not searched for. The misspelt name is part of the interface.
inline constexpr char kRepositoryVar[] = "ZEP_Online_Installation_Caf_Repositiory";

// How the volumes of a medium lie.
enum class VolumeLayout {
    NotSplit,    // in one piece, or not to be checked
    OneFolder,   // all in the folder of volume 1
    Siblings,    // in the folders "2", "3" ... beside that of volume 1
    Outer,       // in numbered outer volumes
    Incomplete,  // not found: some are missing or foreign, or nobody can tell how many there are
};

// The outer set that a medium is nested in ("AM" in messages and variables).
struct OuterSet {
    VolumeNumber first;  // the outer volume that holds volume 1
    std::string marker;  // the file name of its marker
    std::string id;      // empty when the marker has none
    Path folder;         // of that outer volume
    Path relativePath;   // from there to the parent of volume 1's folder

    Path MarkerFile() const { return Join(folder, marker); }
};

// The set of the outer volume in `folder`, an ancestor of volume 1's, that has this marker.
OuterSet OuterSetOf(const Path& mediaDir, const Path& folder, const std::string& marker);

// Where the search expects an outer volume, and in one of them the volume `volume` of the media.
Path OuterVolumeFolder(const OuterSet& set, VolumeNumber outer);
Path FolderInOuterVolume(const OuterSet& set, VolumeNumber volume);

// What a search for the volumes of a medium found, as far as it came.
struct FoundVolumes {
    CopySkipped notSearched{};  // what forbids the search, when something does
    VolumeLayout layout = VolumeLayout::Incomplete;
    std::optional<VolumeCount> count;  // nothing when "volumes.txt" was not read
    std::string id;                    // of a split medium, from the marker of volume 1
    std::optional<OuterSet> outer;
    std::vector<std::string> folders;  // of volumes 2 to N, in the layouts of several folders; of
                                       // those that were found when some are missing
};

// What the installer is told of the volumes.
inline constexpr char kVolumesCountVar[] = "ZEPAdmInstVolumesCount";
inline constexpr char kMtbDirVar[] = "ZEPAdmInstMTBDIR";
inline constexpr char kFirstOuterVolumeVar[] = "ZEPAdmInstFirstAMVolume";
inline constexpr char kFirstOuterPathVar[] = "ZEPAdmInstFirstAMPath";
inline constexpr char kOuterRelativePathVar[] = "ZEPAdmInstAMRelativePath";

// Takes the value of one of these variables, which may change during a search; empty to remove it.
using TellVariable = void (*)(const std::string& name, const std::string& value);

// Searches for the volumes of the media in `mediaDir`, the folder of volume 1. What it finds, and
// what is wrong, is traced, and `tell` gets each variable as soon as it is known, between these
// messages; nothing else is changed. Throws nothing.
FoundVolumes FindVolumes(const LaunchOptions& options, TellVariable tell);

}  // namespace launcher
