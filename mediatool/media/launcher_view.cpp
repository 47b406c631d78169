#include "mediatool/media/launcher_view.h"

#include "fs/environment.h"
#include "launcher/base/launch_options.h"
#include "media/folder_names.h"
#include "media/volumes.h"
#include "mediatool/media/media_set.h"

namespace launcher::mediatool {
namespace {

Layout LayoutOf(int found, const std::optional<VolumeCount>& count) {
    if (found == 0) return Layout::Incomplete;
    if (!count || count->count < 2) return Layout::NotSplit;
    if (found == 1) return Layout::OneFolder;
    return GetEnvVar("ZEPAdmInstFirstAMPath").empty() ? Layout::Siblings : Layout::Outer;
}

}  // namespace

std::string LayoutName(Layout layout) {
    switch (layout) {
        case Layout::OneFolder:
            return "one-folder";
        case Layout::Siblings:
            return "siblings";
        case Layout::Outer:
            return "outer";
        case Layout::Incomplete:
            return "incomplete";
        case Layout::NotSplit:
            break;
    }
    return "not-split";
}

LauncherView ViewOf(const Path& media) {
    SetEnvVar("ZEP_Online_Installation_Caf_Repositiory", "");  // would switch the search off
    LaunchOptions options(0, nullptr, kInstallerName, false, false);
    options.mediaDir = media;
    std::vector<std::string> others;
    LauncherView view;
    const int found = ResolveVolumes(options, others);
    view.count = ReadVolumeCount(Join(Join(media, kInstFolder), kCountFileName).Text());
    view.layout = LayoutOf(found, view.count);
    view.folders.push_back(media.Text());
    if (found > 1) view.folders.insert(view.folders.end(), others.begin(), others.end());
    if (view.layout == Layout::OneFolder)
        view.folders.assign(static_cast<std::size_t>(view.count->count), media.Text());
    view.copies = !options.skipTemporaryCopy;
    return view;
}

}  // namespace launcher::mediatool
