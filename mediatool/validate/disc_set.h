#pragma once

#include <set>
#include <string>

#include "fs/path.h"
#include "media/volume_numbers.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {

// A split medium of which the launcher has read the number of volumes and the identifier.
struct DiscSet {
    Path first;      // the folder of volume 1
    std::string id;  // that all its volumes have
    int count;       // of its volumes
};

// Reports what is wrong with the marker of volume `number` in `folder`, where the launcher looks
// for it. False, and nothing reported, when `folder` is volume 1's and nothing in it was meant to
// be that marker.
bool CheckVolume(const DiscSet& set, VolumeNumber number, const Path& folder, Findings& out);

// The volumes from one number to another that are neither there nor reported for another reason.
// Of a thousand, only the first are named.
class MissingVolumes {
  public:
    MissingVolumes(VolumeNumber first, VolumeNumber last) : first_(first), last_(last) {}

    void Remove(VolumeNumber number) { others_.insert(number); }

    VolumeNumber Total() const;
    VolumeNumber First() const;
    // "2, 3 and 5"
    std::string Numbers() const;
    // "Volume 3 is missing.", "3 volumes are missing: 2, 3 and 5."
    std::string Sentence(std::string what) const;

  private:
    VolumeNumber first_;
    VolumeNumber last_;
    std::set<VolumeNumber> others_;
};

}  // namespace launcher::mediatool
