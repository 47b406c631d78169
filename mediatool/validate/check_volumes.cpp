// The volumes of a disc set: their folders and markers, and what keeps the launcher from putting
// them together.

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/disc_set.h"
#include "mediatool/validate/outer_volumes.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {
namespace {

bool LiesIn(const std::string& folder, const Path& ancestor) {
    const std::string inner = InLowerCase(folder) + kBackslash;
    return inner.starts_with(InLowerCase(ancestor.Text()) + kBackslash);
}

// The volumes at the places where the launcher looks for them.
class Volumes {
  public:
    Volumes(const Subject& subject, const DiscSet& set, Findings& out)
        : subject_(subject), set_(set), out_(out), parent_(ParentOfVolumes(set.first)) {
        for (const auto& [number, marker] : MarkersMeantIn(set.first))
            if (IsLater(number)) inFirst_.insert(number);
        ForEachVolumeNumber(parent_, 2, set.count, "", [this](VolumeNumber k) {
            if (IsFolder(Beside(k))) beside_.insert(k);
        });
        misnamed_ = MisnamedFolders(parent_, set.id);
        std::erase_if(misnamed_, [this](const auto& folder) {
            return !IsLater(folder.first) || beside_.contains(folder.first);
        });
    }

    void Check() {
        CheckMarkerText(MarkerIn(set_.first, 1), out_);
        const Layout layout = MeantLayout();
        if (layout == Layout::OneFolder)
            CheckOneFolder();
        else if (layout == Layout::Siblings)
            CheckSiblings();
        else if (!CheckOuterVolumes(set_, out_))
            ReportElsewhere();
    }

  private:
    // The launcher tries three layouts, one after the other: when it does not find all volumes, the
    // first of which something is there is what the maker meant.
    Layout MeantLayout() const {
        if (subject_.view.layout != Layout::Incomplete) return subject_.view.layout;
        if (!inFirst_.empty()) return Layout::OneFolder;
        return beside_.empty() && misnamed_.empty() ? Layout::Outer : Layout::Siblings;
    }

    bool IsLater(VolumeNumber number) const { return number > 1 && number <= set_.count; }
    Path Beside(VolumeNumber k) const { return Join(parent_, std::to_string(k)); }

    void CheckOneFolder() {
        MissingVolumes missing(2, set_.count);
        for (const VolumeNumber k : inFirst_)
            if (CheckVolume(set_, k, set_.first, out_)) missing.Remove(k);
        bool areMixed = false;
        for (const VolumeNumber k : beside_) {
            areMixed = areMixed || !inFirst_.contains(k);
            missing.Remove(k);
        }
        if (missing.Total() > 0) ReportMissing(missing, set_.first);
        if (areMixed) out_.Add("volumes-mixed-layouts", set_.first);
    }

    void CheckSiblings() {
        MissingVolumes missing(2, set_.count);
        for (const VolumeNumber k : beside_)
            if (CheckVolume(set_, k, Beside(k), out_)) missing.Remove(k);
        for (const auto& [k, folder] : misnamed_) {
            missing.Remove(k);
            out_.Add("volume-folder-named-otherwise", folder,
                     {std::to_string(k), FileName(folder)});
        }
        if (missing.Total() > 0) ReportMissing(missing, Beside(missing.First()));
        // The launcher's search depends on the current folder then.
        if (IsEmpty(Parent(set_.first))) out_.Add("volumes-at-drive-root", set_.first);
    }

    void ReportMissing(const MissingVolumes& missing, const Path& folder) {
        out_.Add("volume-missing", MarkerIn(folder, missing.First()), {missing.Sentence("volume")});
    }

    void ReportElsewhere() {
        const std::vector<Path>& given = subject_.set.given;
        const bool areDrives =
            std::ranges::all_of(given, [](const Path& folder) { return IsEmpty(Parent(folder)); });
        out_.AddFirst({{given.size() == 1, "volumes-elsewhere"},
                       {areDrives, "volumes-on-other-drives"},
                       {true, "no-layout-fits"}},
                      set_.first, {std::to_string(set_.count)});
    }

    const Subject& subject_;
    const DiscSet& set_;
    Findings& out_;
    Path parent_;
    std::set<VolumeNumber> inFirst_;         // markers in volume 1's folder, right or not
    std::set<VolumeNumber> beside_;          // folders beside it
    std::map<VolumeNumber, Path> misnamed_;  // folders beside it under other names
};

// Given folders that the launcher does without.
void CheckGiven(const Subject& subject, Findings& out) {
    for (const Path& folder : subject.set.given) {
        const auto isHere = [&folder](const std::string& volume) {
            return SameName(volume, folder.Text()) || LiesIn(volume, folder);
        };
        if (std::ranges::none_of(subject.view.folders, isHere))
            out.Add("folder-not-a-volume", folder);
    }
}

}  // namespace

void CheckVolumes(const Subject& subject, Findings& out) {
    const LauncherView& view = subject.view;
    const bool isIncomplete = view.layout == Layout::Incomplete;
    if (!isIncomplete) CheckGiven(subject, out);
    if (view.layout == Layout::NotSplit || !view.count) return;
    const DiscSet set{subject.Media(), view.id, view.count->count};
    const std::size_t before = out.Sorted().size();
    if (set.id.empty())
        CheckVolume(set, 1, set.first, out);
    else
        Volumes(subject, set, out).Check();
    // No set that the launcher cannot put together ever passes as clean.
    if (isIncomplete && out.Sorted().size() == before) out.Add("volumes-not-found", set.first);
}

}  // namespace launcher::mediatool
