// The volumes of a disc set: their folders and markers, and what keeps the launcher from putting
// them together.

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/disc_set.h"

namespace launcher::mediatool {
namespace {

// The volumes at the places where the launcher looks for them, and those that are at others.
class Volumes {
  public:
    Volumes(const Subject& subject, const DiscSet& set, Findings& out)
        : subject_(subject), set_(set), out_(out), parent_(ParentOfVolumes(set.first)) {
        for (const auto& [number, marker] : MarkersMeantIn(set.first))
            if (number > 1 && number <= set.count) inFirst_.insert(number);
        beside_ = NumberedFolders(parent_, 2, set.count);
        std::erase_if(beside_, [this](VolumeNumber k) { return IsFirst(Beside(k)); });
        if (subject.view.layout != Layout::Incomplete) return;
        lost_ = LostVolumes(set, subject.set.given);
        // A folder at the right place speaks for itself, unless it holds another volume.
        std::erase_if(lost_, [this, all = lost_](const auto& lost) {
            return beside_.contains(lost.first) && !Holds(Beside(lost.first), all);
        });
    }

    void Check() {
        CheckMarkerText(MarkerIn(set_.first, 1), set_.id, out_);
        const Layout layout = MeantLayout();
        if (layout == Layout::OneFolder)
            CheckOneFolder();
        else if (layout == Layout::Siblings)
            CheckSiblings();
        else if (!CheckOuterVolumes(set_, out_))
            CheckElsewhere();
    }

  private:
    // The launcher tries three layouts, one after the other: when it does not find all volumes, the
    // first of which something is there is what the maker meant.
    Layout MeantLayout() const {
        if (subject_.view.layout != Layout::Incomplete) return subject_.view.layout;
        if (!inFirst_.empty()) return Layout::OneFolder;
        const auto isBeside = [this](const auto& lost) { return IsBeside(lost.second); };
        return beside_.empty() && std::ranges::none_of(lost_, isBeside) ? Layout::Outer
                                                                        : Layout::Siblings;
    }

    Path Beside(VolumeNumber k) const { return Join(parent_, std::to_string(k)); }
    bool IsFirst(const Path& folder) const { return SameName(folder, set_.first); }
    bool IsBeside(const Path& folder) const { return SameName(Parent(folder), parent_); }

    void CheckOneFolder() {
        MissingVolumes missing(2, set_.count);
        const auto inFirst = [this](VolumeNumber) { return set_.first; };
        for (const VolumeNumber k : inFirst_) {
            CheckVolume(set_, k, inFirst, out_);
            missing.Remove(k);
        }
        for (const VolumeNumber k : beside_)
            missing.Remove(k);
        if (missing.Total() > 0) ReportMissing(missing, set_.first);
        if (!std::ranges::includes(inFirst_, beside_))
            out_.Add("volumes-mixed-layouts", set_.first);
    }

    void CheckSiblings() {
        MissingVolumes missing(2, set_.count);
        const auto place = [this](VolumeNumber k) { return Beside(k); };
        for (const VolumeNumber k : beside_) {
            if (Holds(Beside(k), lost_)) continue;
            CheckVolume(set_, k, place, out_);
            missing.Remove(k);
        }
        ReportLost(missing);
        if (missing.Total() > 0) ReportMissing(missing, Beside(missing.First()));
        // The launcher's search depends on the current folder then.
        if (IsEmpty(Parent(set_.first))) out_.Add("volumes-at-drive-root", set_.first);
    }

    static bool Holds(const Path& folder, const std::map<VolumeNumber, Path>& volumes) {
        const auto isHere = [&](const auto& volume) { return SameName(volume.second, folder); };
        return std::ranges::any_of(volumes, isHere);
    }

    void ReportLost(MissingVolumes& missing) {
        for (const auto& [k, folder] : lost_) {
            missing.Remove(k);
            out_.AddFirst({{IsFirst(Beside(k)), "volume-folder-named-otherwise/taken"},
                           {IsBeside(folder), "volume-folder-named-otherwise"},
                           {true, "volume-misplaced"}},
                          folder, {std::to_string(k), FileName(folder), Beside(k).Text()});
        }
        if (IsEmpty(Parent(set_.first))) return;
        for (const auto& [k, archive] : PackedVolumes(parent_)) {
            if (!missing.Contains(k)) continue;
            missing.Remove(k);
            out_.Add("volume-not-unpacked", archive, {std::to_string(k), Beside(k).Text()});
        }
    }

    void ReportMissing(const MissingVolumes& missing, const Path& folder) {
        out_.Add("volume-missing", MarkerIn(folder, missing.First()), {missing.Sentence("volume")});
    }

    // No volume is at a place where the launcher would find it.
    void CheckElsewhere() {
        const std::vector<Path>& given = subject_.set.given;
        if (given.size() > 1) {
            CheckGivenVolumes(set_, given, out_);
            const bool areDrives = std::ranges::all_of(
                given, [](const Path& folder) { return IsEmpty(Parent(folder)); });
            out_.AddFirst({{areDrives, "volumes-on-other-drives"}, {true, "no-layout-fits"}},
                          set_.first);
            return;
        }
        const auto isHigher = [this](const auto& lost) {
            return SameName(Parent(lost.second), Parent(parent_));
        };
        if (!lost_.empty() && std::ranges::all_of(lost_, isHigher)) {
            out_.Add("volume-too-deep", set_.first, {"Volume 1", parent_.Text()});
            return;
        }
        MissingVolumes missing(2, set_.count);
        const VolumeNumber all = missing.Total();
        ReportLost(missing);
        if (missing.Total() == all)
            out_.Add("volumes-elsewhere", set_.first, {std::to_string(set_.count)});
        else if (missing.Total() > 0)
            ReportMissing(missing, Beside(missing.First()));
    }

    const Subject& subject_;
    const DiscSet& set_;
    Findings& out_;
    Path parent_;
    std::set<VolumeNumber> inFirst_;     // markers in volume 1's folder, right or not
    std::set<VolumeNumber> beside_;      // folders beside it
    std::map<VolumeNumber, Path> lost_;  // volumes that are not at their places
};

// Given folders that the launcher does without.
void CheckGiven(const Subject& subject, Findings& out) {
    for (const Path& folder : subject.set.given) {
        const auto isHere = [&folder](const std::string& volume) {
            return IsWithin(Path(volume), folder);
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
    const DiscSet set{subject.Media(), view.id, view.count->count, subject.ids};
    const std::size_t before = out.Size();
    if (set.id.empty())
        CheckVolume(
            set, 1, [&set](VolumeNumber) { return set.first; }, out);
    else
        Volumes(subject, set, out).Check();
    // No set that the launcher cannot put together ever passes as clean.
    if (isIncomplete && out.Size() == before) out.Add("volumes-not-found", set.first);
}

}  // namespace launcher::mediatool
