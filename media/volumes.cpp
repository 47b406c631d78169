#include "media/volumes.h"

#include <cstddef>
#include <utility>

#include "fs/environment.h"
#include "launcher/base/launch_options.h"
#include "media/volume_search.h"

namespace launcher {
namespace {

void ClearVolumeVariables() {
    for (const char* name : {kVolumesCountVar, kMtbDirVar, kFirstOuterVolumeVar, kFirstOuterPathVar,
                             kOuterRelativePathVar})
        SetEnvVar(name, "");
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

CopySkipped WhyNotCopied(const FoundVolumes& found) {
    if (found.notSearched != CopySkipped::No) return found.notSearched;
    return found.layout == VolumeLayout::NotSplit ? CopySkipped::NotSplit : CopySkipped::Complete;
}

}  // namespace

int ResolveVolumes(LaunchOptions& options, std::vector<std::string>& volumes) {
    ClearVolumeVariables();
    FoundVolumes found = FindVolumes(options, SetEnvVar);
    const int result = ResultOf(found);
    if (result != 0) {
        options.skipTemporaryCopy = true;
        options.copySkipped = WhyNotCopied(found);
    }
    volumes = std::move(found.folders);
    return result;
}

void ExportVolumePaths(const std::vector<std::string>& volumes) {
    for (std::size_t i = 0; i < volumes.size(); ++i)
        SetEnvVar("ZEPAdmInstVolumePath_" + std::to_string(i + 2), volumes[i]);
}

}  // namespace launcher
