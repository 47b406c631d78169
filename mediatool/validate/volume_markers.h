#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "fs/path.h"
#include "media/volume_numbers.h"
#include "mediatool/media/launcher_view.h"

namespace launcher::mediatool {

// The identifiers in the markers of volumes, each read once: what the launcher read where its
// search asked for them, and elsewhere what it would read.
class MarkerIds {
  public:
    MarkerIds() = default;
    explicit MarkerIds(const std::vector<AskedMarker>& asked);

    const std::string& In(const Path& marker) const;
    bool WasAskedFor(const Path& marker) const;  // by the launcher

  private:
    std::set<std::string> asked_;                     // paths in lower case
    mutable std::map<std::string, std::string> ids_;  // by these
};

// Looks for the markers of volumes, at their places and where they ought not to be.

// The folder that the folders "2", "3" ... of the other volumes are in: volume 1's own when that is
// the root of a drive, where the launcher finds them while that drive is the current one.
Path ParentOfVolumes(const Path& volumeOne);

// The markers "1.txt", "2.txt" ... of a folder, and the number in the name of one.
std::vector<Path> NumberedMarkers(const Path& folder);
VolumeNumber NumberIn(const Path& marker);

// A file that was meant to be the marker of a volume, by its name: "02.txt", "2.txt.txt".
struct MeantMarker {
    Path file;
    bool hasZeros;
};
// By the number of the volume; of the right name or not, readable or not.
std::multimap<VolumeNumber, MeantMarker> MarkersMeantIn(const Path& folder);

// The folders of `parent` that are named by a number from `first` to `last`. A damaged count may
// ask for two thousand million: what is not listed is not looked for.
std::set<VolumeNumber> NumberedFolders(const Path& parent, VolumeNumber first, VolumeNumber last);

// The markers of a set's later volumes in numbered folders that lie as its outer volumes would,
// whether the launcher comes to them or not.
struct VolumeInOuter {
    Path first;           // volume 1's outer volume, if these are outer volumes
    VolumeNumber outer;   // the number of the folder
    VolumeNumber number;  // of the volume in it
    Path marker;
};
std::vector<VolumeInOuter> VolumesInOuter(const Path& volumeOne, const std::string& setId,
                                          const MarkerIds& ids);

}  // namespace launcher::mediatool
