#include "media/flavours.h"

#include "fs/environment.h"
#include "fs/path.h"
#include "launcher/base/launch_options.h"
#include "media/folder_names.h"

namespace launcher {
namespace {

struct KnownFlavour {
    const char* osFolder;
    bool needs64BitWindows;
};

// In order of preference.
constexpr KnownFlavour kKnownFlavours[] = {
    {"win_b64", true},
    {"win_csa64", true},
    {"intel_a", false},
};

}  // namespace

std::vector<Flavour> MediaFlavours(const LaunchOptions& options) {
    const Path& media = options.mediaDir;
    const std::string givenMarker = GetEnvVar("ZEPAdmInstODTinstallOSpath");
    std::vector<Flavour> flavours;
    for (const auto& [osFolder, needs64BitWindows] : kKnownFlavours) {
        const std::string markerName = std::string(osFolder) + ".installos";
        flavours.push_back({osFolder, needs64BitWindows,
                            InstallerExecutable(media, osFolder, options.installerExeName).Text(),
                            givenMarker.empty()
                                ? Join(media, {kInstFolder, kCommonFolder, markerName}).Text()
                                : givenMarker});
    }
    return flavours;
}

}  // namespace launcher
