#include "media/volumes.h"

#include <cstddef>
#include <utility>

#include "fs/environment.h"
#include "launcher/base/launch_options.h"
#include "media/volume_search.h"

namespace launcher {
namespace {

constexpr char kVolumesCountVar[] = "ZEPAdmInstVolumesCount";
constexpr char kMtbDirVar[] = "ZEPAdmInstMTBDIR";
constexpr char kFirstOuterVolumeVar[] = "ZEPAdmInstFirstAMVolume";
constexpr char kFirstOuterPathVar[] = "ZEPAdmInstFirstAMPath";
constexpr char kOuterRelativePathVar[] = "ZEPAdmInstAMRelativePath";

void ClearVolumeVariables() {
    for (const char* name : {kVolumesCountVar, kMtbDirVar, kFirstOuterVolumeVar, kFirstOuterPathVar,
                             kOuterRelativePathVar})
        SetEnvVar(name, "");
}

// A media of which something was found, complete or not. One that is complete in one folder is an
// ordinary media to the installer.
void SetVolumeVariables(const FoundVolumes& found) {
    if (found.layout == VolumeLayout::NotSplit || !found.count) return;
    if (found.layout != VolumeLayout::OneFolder) SetEnvVar(kVolumesCountVar, found.count->line);
    SetEnvVar(kMtbDirVar, found.outer ? found.outer->id : found.id);
    if (!found.outer) return;
    SetEnvVar(kFirstOuterVolumeVar, std::to_string(found.outer->first));
    SetEnvVar(kFirstOuterPathVar, found.outer->folder.Text());
    SetEnvVar(kOuterRelativePathVar, found.outer->relativePath.Text());
}

int ResultOf(const FoundVolumes& found) {
    switch (found.layout) {
        case VolumeLayout::NotSplit:
        case VolumeLayout::OneFolder:
            return 1;
        case VolumeLayout::Siblings:
        case VolumeLayout::Outer:
            return found.count->count;
        case VolumeLayout::Incomplete:
            break;
    }
    return 0;
}

}  // namespace

int ResolveVolumes(LaunchOptions& options, std::vector<std::string>& volumes) {
    ClearVolumeVariables();
    FoundVolumes found = FindVolumes(options);
    SetVolumeVariables(found);
    const int result = ResultOf(found);
    if (result != 0) options.skipTemporaryCopy = true;
    volumes = std::move(found.folders);
    return result;
}

void ExportVolumePaths(const std::vector<std::string>& volumes) {
    for (std::size_t i = 0; i < volumes.size(); ++i)
        SetEnvVar("ZEPAdmInstVolumePath_" + std::to_string(i + 2), volumes[i]);
}

}  // namespace launcher
