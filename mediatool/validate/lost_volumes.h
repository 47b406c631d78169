#pragma once

#include <map>
#include <vector>

#include "mediatool/validate/disc_set.h"

namespace launcher::mediatool {

// The later volumes of a set that lie where the launcher does not look for them: beside volume 1
// under another name, in volume 1, one folder deeper or higher, or in a `given` folder. By their
// numbers.
std::map<VolumeNumber, Path> LostVolumes(const DiscSet& set, const std::vector<Path>& given);

// Archives in `parent` that have the number of a volume for a name, or at its end: "2.zip".
std::map<VolumeNumber, Path> PackedVolumes(const Path& parent);

}  // namespace launcher::mediatool
