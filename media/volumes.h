#pragma once

#include <string>
#include <vector>

namespace launcher {

class LaunchOptions;

// Finds the volumes of a split medium (media/volume_search.h) and tells the installer about them in
// environment variables:
//   "ZEPAdmInstVolumesCount"     the first line of "volumes.txt"; removed when all volumes lie in
//                                one folder, so that the installer sees an ordinary media
//   "ZEPAdmInstMTBDIR"           the id of the media, or of the outer set it is nested in
//   "ZEPAdmInstFirstAMVolume", "ZEPAdmInstFirstAMPath", "ZEPAdmInstAMRelativePath"
//                                where volume 1 lies in a medium nested in numbered outer volumes
//
// Returns 1 for a medium that is not split, is not to be checked or is complete in one folder; the
// number N of volumes when all were found in several folders, with those of volumes 2 to N, in
// order, in `volumes` (empty before); and 0, after messages, when something is missing or belongs
// to another medium. Sets `skipTemporaryCopy` with every result but 0. Throws nothing.
int ResolveVolumes(LaunchOptions& options, std::vector<std::string>& volumes);

// Tells the installer the folders of the volumes from the second on, in "ZEPAdmInstVolumePath_2"
// and so on.
void ExportVolumePaths(const std::vector<std::string>& volumes);

}  // namespace launcher
