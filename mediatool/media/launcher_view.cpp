#include "mediatool/media/launcher_view.h"

#include <windows.h>

#include <nlohmann/json.hpp>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "launcher/base/launch_options.h"
#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

// Far more than any set has volumes, and than a folder that can be listed names.
constexpr std::size_t kMostInVain = 10'000;

// What ends a search. No std::exception, so that nothing of the launcher catches it.
struct Endless {};

// While it lives, a search writes down what it asks for.
class Recording {
  public:
    explicit Recording(std::vector<AskedMarker>& asked) : asked_(asked) { current = this; }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording() { current = nullptr; }

    void Add(const std::string& path, const std::string& id) {
        asked_.push_back({Path(path), id});
        if (id.empty() && ++inVain_ > kMostInVain) throw Endless();
    }

    static inline Recording* current = nullptr;

  private:
    std::vector<AskedMarker>& asked_;
    std::size_t inVain_ = 0;
};

FoundVolumes Search(const LaunchOptions& options, std::vector<AskedMarker>& asked) {
    const Recording recording(asked);
    try {
        return FindVolumes(options, [](const std::string&, const std::string&) {});
    } catch (const Endless&) {
        FoundVolumes found;
        found.count = ReadVolumeCount(CountFileIn(options.mediaDir).Text());
        found.id = asked.front().id;  // of volume 1, whose marker comes first
        return found;
    }
}

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

void WriteDownMarker(const std::string& path, const std::string& id) {
    if (Recording::current != nullptr) Recording::current->Add(path, id);
}

std::string LayoutName(Layout layout) {
    return NameIn({"not-split", "one-folder", "siblings", "outer", "incomplete"}, layout);
}

Json JsonOf(const LauncherView& view) {
    return {{"count", view.count ? Json(view.count->count) : Json()},
            {"layout", LayoutName(view.layout)},
            {"folders", view.folders}};
}

LauncherView ViewOf(const Path& media) {
    SetEnvVar(kRepositoryVar, "");  // would switch the search off
    LaunchOptions options(0, nullptr, kInstallerName, false, false);
    options.mediaDir = media;
    LauncherView view;
    const FoundVolumes found = Search(options, view.asked);
    view.layout = found.layout;
    view.count = found.count;
    view.id = found.id;
    view.folders = {media.Text()};
    if (view.layout == Layout::OneFolder)
        view.folders.assign(static_cast<std::size_t>(found.count->count), media.Text());
    else if (view.layout != Layout::Incomplete)
        view.folders.insert(view.folders.end(), found.folders.begin(), found.folders.end());
    return view;
}

LauncherView ViewFromEverywhere(const Path& media) {
    if (!IsEmpty(Parent(media))) return ViewOf(media);
    const CurrentRoot root(media);
    LauncherView view = ViewOf(media);
    for (std::string& folder : view.folders)
        folder = FullPath(folder).Text();
    for (AskedMarker& marker : view.asked)
        marker.file = FullPath(marker.file.Text());
    return view;
}

}  // namespace launcher::mediatool
