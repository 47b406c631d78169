#include "mediatool/media/launcher_view.h"

#include <windows.h>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "launcher/base/launch_options.h"
#include "mediatool/base/files.h"

namespace launcher::mediatool {
namespace {

// The root of the drive as the current folder, while the object lives.
class CurrentRoot {
  public:
    explicit CurrentRoot(const Path& media) : before_(32768, L'\0') {
        before_.resize(GetCurrentDirectoryW(static_cast<DWORD>(before_.size()), before_.data()));
        SetCurrentDirectoryW(ToWide(media.Text() + kBackslash).c_str());
    }
    CurrentRoot(const CurrentRoot&) = delete;
    CurrentRoot& operator=(const CurrentRoot&) = delete;
    ~CurrentRoot() { SetCurrentDirectoryW(before_.c_str()); }

  private:
    std::wstring before_;
};

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

LauncherView ViewFromEverywhere(const Path& media) {
    if (!IsEmpty(Parent(media))) return ViewOf(media);
    const CurrentRoot root(media);
    LauncherView view = ViewOf(media);
    for (std::string& folder : view.folders)
        folder = FullPath(folder).Text();
    return view;
}

}  // namespace launcher::mediatool
