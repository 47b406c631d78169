#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mediatool/media/media_set.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {

// Of more volumes than this, which only a count file has that is wrong, the others are counted and
// not looked at.
inline constexpr int kMostLookedAt = 199;

// Where a volume's marker should be.
struct VolumePlace {
    Path folder;
    int number;
    std::string mediaId;  // empty when it is not known
};

// The folder that the folders "2", "3" ... of the other volumes are in: volume 1's own when that is
// the root of a drive, where the launcher finds them while that drive is the current one.
Path ParentOfVolumes(const Path& volumeOne);

// The markers "1.txt", "2.txt" ... of a folder, and the number in the name of one.
std::vector<Path> NumberedMarkers(const Path& folder);
long long NumberIn(const Path& marker);

// The volumes of which something in the folder was meant to be the marker, readable or not.
std::set<long long> TracesIn(const Path& folder);

// The folders below `parent` that hold the marker of a volume of the media and do not have its
// number for a name, by that number.
std::map<long long, Path> MisnamedFolders(const Path& parent, const std::string& mediaId);

// The markers of a media's later volumes in numbered folders that lie as its outer volumes would,
// whether the launcher comes to them or not.
struct VolumeInOuter {
    Path first;  // volume 1's outer volume, if these are outer volumes
    int outer;   // the number of the folder
    int number;  // of the volume in it
    Path marker;
};
std::vector<VolumeInOuter> VolumesInOuter(const Path& volumeOne, const std::string& mediaId);

// Finds out why the launcher reads no identifier there. False, and nothing reported, when the
// volume is simply not there.
bool ExplainMissingMarker(const VolumePlace& place, Findings& out);

// Volumes, or outer ones, that are not there. Of a thousand, only the first are named.
class MissingVolumes {
  public:
    explicit MissingVolumes(std::string what = "volume") : what_(std::move(what)) {}

    void Add(long long number, const Path& file);
    // More that are missing in a folder; at the end of the others.
    void AddUnnamed(long long count, const Path& folder);

    long long Total() const { return total_; }
    const Path& FirstFile() const { return firstFile_; }
    // "Volume 3 is missing.", "3 volumes are missing: 2, 3 and 5."
    std::string Sentence() const;
    // "2, 3 and 5"
    std::string Numbers() const;

    void Report(Findings& out) const;

  private:
    std::string what_;
    long long total_ = 0;
    std::vector<long long> first_;
    Path firstFile_;
};

// How many entries of the folder are named by a number from `first` to `last`, and `suffix`.
long long CountNumbered(const Path& folder, const std::string& suffix, long long first,
                        long long last);

// Reports a marker whose identifier is not the media's.
void CompareIdentifiers(const Path& marker, const std::string& mediaId, Findings& out);

}  // namespace launcher::mediatool
