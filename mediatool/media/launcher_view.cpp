#include "mediatool/media/launcher_view.h"

#include "fs/environment.h"
#include "launcher/base/launch_options.h"

namespace launcher::mediatool {

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
    const FoundVolumes found = FindVolumes(options, [](const std::string&, const std::string&) {});
    LauncherView view;
    view.layout = found.layout;
    view.count = found.count;
    view.id = found.id;
    view.folders = {media.Text()};
    if (view.layout == Layout::OneFolder)
        view.folders.assign(static_cast<std::size_t>(found.count->count), media.Text());
    else if (view.layout != Layout::Incomplete)
        view.folders.insert(view.folders.end(), found.folders.begin(), found.folders.end());
    view.copies = view.layout == Layout::Incomplete;
    return view;
}

}  // namespace launcher::mediatool
