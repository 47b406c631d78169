#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "fs/path.h"
#include "media/volume_numbers.h"
#include "mediatool/validate/findings.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {

// A split medium of which the launcher has read the number of volumes and the identifier.
struct DiscSet {
    Path first;      // the folder of volume 1
    std::string id;  // that all its volumes have
    int count;       // of its volumes
    const MarkerIds& ids;

    // Whether the marker is there, and is one of this set.
    bool Has(const Path& marker) const { return ids.In(marker) == id; }
};

// The folder where the launcher looks for a volume, in one of the layouts.
using PlaceOf = std::function<Path(VolumeNumber)>;

// Reports what is wrong with volume `number` at its place.
void CheckVolume(const DiscSet& set, VolumeNumber number, const PlaceOf& placeOf, Findings& out);

// Reports a volume, or an outer one, that is in a folder of its own in `folder`, its place, by the
// marker `name` with the identifier `id`. False, and nothing reported, when there is none.
bool CheckDepth(const std::string& volume, const Path& folder, const std::string& name,
                const std::string& id, const MarkerIds& ids, Findings& out);

// Reports what is wrong with the numbered outer volumes that a disc set is nested in. False, and
// nothing reported but stray markers, when nothing above it was meant to be an outer volume.
bool CheckOuterVolumes(const DiscSet& set, Findings& out);

// Reports what is wrong with the volumes of a set that were given as folders or drives of their
// own, which is where nothing but their markers tells which volumes they are.
void CheckGivenVolumes(const DiscSet& set, const std::vector<Path>& given, Findings& out);

// The later volumes of a set that lie where the launcher does not look for them: beside volume 1
// under another name, in volume 1, one folder deeper or higher, or in a `given` folder. By their
// numbers.
std::map<VolumeNumber, Path> LostVolumes(const DiscSet& set, const std::vector<Path>& given);

// Archives in `parent` by the number that they have for a name, or at its end: "2.zip"; 0 for none.
std::map<VolumeNumber, Path> PackedVolumes(const Path& parent);

// The volumes from one number to another that are neither there nor reported for another reason.
// Of a thousand, only the first are named.
class MissingVolumes {
  public:
    MissingVolumes(VolumeNumber first, VolumeNumber last) : first_(first), last_(last) {}

    void Remove(VolumeNumber number) { others_.insert(number); }
    bool Contains(VolumeNumber number) const;

    VolumeNumber Total() const;
    VolumeNumber First() const { return Named().front(); }
    // "2, 3 and 5"
    std::string Numbers() const;
    // "Volume 3 is missing.", "3 volumes are missing: 2, 3 and 5."
    std::string Sentence(std::string what) const;

  private:
    std::vector<VolumeNumber> Named() const;

    VolumeNumber first_;
    VolumeNumber last_;
    std::set<VolumeNumber> others_;
};

}  // namespace launcher::mediatool
