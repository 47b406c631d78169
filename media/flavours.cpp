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

std::vector<Flavour> FlavoursIn(const Path& mediaDir, const std::string& exeName,
                                const std::string& givenMarker) {
    std::vector<Flavour> flavours;
    for (const auto& [osFolder, needs64BitWindows] : kKnownFlavours) {
        const std::string markerName = std::string(osFolder) + kFlavourMarkerExtension;
        flavours.push_back(
            {osFolder, needs64BitWindows, InstallerExecutable(mediaDir, osFolder, exeName).Text(),
             givenMarker.empty() ? Join(mediaDir, {kInstFolder, kCommonFolder, markerName}).Text()
                                 : givenMarker});
    }
    return flavours;
}

std::vector<Flavour> MediaFlavours(const LaunchOptions& options) {
    return FlavoursIn(options.mediaDir, options.installerExeName, GetEnvVar(kFlavourMarkerVar));
}

}  // namespace launcher
