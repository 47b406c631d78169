// The volumes of a split media: their folders and markers, and what keeps the launcher from
// putting them together.

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/outer_volumes.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {
namespace {

bool SameFolder(const Path& left, const Path& right) {
    return SameName(left.Text(), right.Text());
}

bool LiesIn(const std::string& folder, const Path& ancestor) {
    const std::string inner = InLowerCase(folder) + "\\";
    return inner.starts_with(InLowerCase(ancestor.Text()) + "\\");
}

class VolumeSet {
  public:
    VolumeSet(const Subject& subject, Findings& out)
        : subject_(subject),
          out_(out),
          media_(subject.Media()),
          parent_(ParentOfVolumes(media_)),
          all_(subject.view.count ? subject.view.count->count : 0),
          count_(std::min(all_, kMostLookedAt)),
          id_(ReadMtbDir(Join(media_, MarkerName(1)).Text())) {}

    void Check() {
        if (count_ < 2)
            CheckNotSplit();
        else if (subject_.view.layout == Layout::Incomplete)
            CheckIncomplete();
        else
            CheckComplete();
        CheckGiven();
    }

  private:
    // Markers without a count file.
    void CheckNotSplit() {
        const Path file = Join(Join(media_, kInstFolder), kCountFileName);
        if (Look(file) || id_.empty() || out_.Has("count-file-misplaced") ||
            out_.Has("count-file-misspelt"))
            return;
        out_.Error("count-file-missing", file.Text(),
                   "The media has a volume marker, 1.txt, but no count file.",
                   "The launcher takes it for one that is not split, and tells the installer "
                   "nothing of the other volumes.",
                   "Write inst\\volumes.txt with the number of volumes.");
    }

    void CheckComplete() {
        for (std::size_t i = 0; i < subject_.view.folders.size(); ++i)
            CheckMarkerText(
                Join(Path(subject_.view.folders[i]), MarkerName(static_cast<int>(i) + 1)), out_);
        if (subject_.view.layout == Layout::Outer)
            CheckCompleteOuterVolumes({media_, id_, all_}, out_);
        if (subject_.view.layout == Layout::Siblings && IsEmpty(Parent(media_))) ReportAtRoot();
    }

    void CheckIncomplete() {
        const Path first = Join(media_, MarkerName(1));
        if (id_.empty()) {
            ExplainMissingMarker({media_, 1, {}}, out_);
            return;
        }
        CheckMarkerText(first, out_);
        traces_ = TracesIn(media_);
        misnamed_ = MisnamedFolders(parent_, id_);
        if (HasTraceInOneFolder())
            CheckOneFolder();
        else if (HasTraceOfSiblings())
            CheckSiblings();
        else if (!CheckIncompleteOuterVolumes({media_, id_, all_}, out_))
            ReportElsewhere();
        CheckTwice();
    }

    bool HasTraceInOneFolder() const {
        const auto second = traces_.upper_bound(1);
        return second != traces_.end() && *second <= all_;
    }

    bool HasTraceOfSiblings() const {
        for (int k = 2; k <= count_; ++k)
            if (IsFolder(Sibling(k)) || misnamed_.contains(k)) return true;
        return false;
    }

    Path Sibling(int k) const { return Join(parent_, std::to_string(k)); }

    void CheckOneFolder() {
        bool mixed = false;
        MissingVolumes missing;
        for (int k = 2; k <= count_; ++k) {
            const Path marker = Join(media_, MarkerName(k));
            if (!traces_.contains(k)) {
                if (IsFolder(Sibling(k)))
                    mixed = true;
                else
                    missing.Add(k, marker);
            } else if (!ReadMtbDir(marker.Text()).empty()) {
                CheckMarkerText(marker, out_);
                CompareIdentifiers(marker, id_, out_);
            } else {
                ExplainMissingMarker({media_, k, id_}, out_);
            }
        }
        if (all_ > count_)
            missing.AddUnnamed(all_ - count_ - CountNumbered(media_, ".txt", count_ + 1, all_),
                               media_);
        missing.Report(out_);
        if (mixed)
            out_.Error("volumes-mixed-layouts", media_.Text(),
                       "Some volumes are in volume 1's folder and others beside it.",
                       "The launcher looks beside it only when none is in it.",
                       "Put all volumes into one folder, or each into a folder of its own.");
    }

    void CheckSiblings() {
        MissingVolumes missing;
        for (int k = 2; k <= count_; ++k) {
            const Path folder = Sibling(k);
            const Path marker = Join(folder, MarkerName(k));
            if (!ReadMtbDir(marker.Text()).empty()) {
                CheckMarkerText(marker, out_);
                CompareIdentifiers(marker, id_, out_);
            } else if (IsFolder(folder)) {
                if (!ExplainMissingMarker({folder, k, id_}, out_)) missing.Add(k, marker);
            } else if (const auto other = misnamed_.find(k); other != misnamed_.end()) {
                out_.Error("volume-folder-named-otherwise", other->second.Text(),
                           "Volume " + std::to_string(k) + " is in a folder named " +
                               FileName(other->second) + ".",
                           "The launcher looks for it in the folder " + std::to_string(k) +
                               " beside volume 1's.",
                           "Rename the folder to " + std::to_string(k) + ".");
            } else {
                missing.Add(k, marker);
            }
        }
        if (all_ > count_)
            missing.AddUnnamed(all_ - count_ - CountNumbered(parent_, "", count_ + 1, all_),
                               parent_);
        missing.Report(out_);
        if (IsEmpty(Parent(media_))) ReportAtRoot();
    }

    // The launcher's search depends on the current folder then.
    void ReportAtRoot() {
        out_.Error("volumes-at-drive-root", media_.Text(),
                   "Volume 1 is at the root of a drive, and other volumes are in folders there.",
                   "The launcher looks for them in the root of the current drive: it finds them "
                   "only when it is started from this one.",
                   "Put volume 1 into a folder of its own, 1, beside the others.");
    }

    void ReportElsewhere() {
        const std::string why =
            "The launcher copies the installer to the temporary folder, and leaves it to the "
            "installer to ask for the other volumes.";
        if (subject_.set.given.size() == 1)
            out_.Warning("volumes-elsewhere", media_.Text(),
                         "Only volume 1 of " + std::to_string(all_) + " is here.", why,
                         "Nothing, when the others are on discs of their own; else put them into "
                         "one of the layouts.");
        else if (EachOnItsOwnDrive())
            out_.Warning("volumes-on-other-drives", media_.Text(),
                         "Each volume is on a drive of its own.", why,
                         "Nothing, when they are discs to be put in one after the other.");
        else
            out_.Error("no-layout-fits", media_.Text(),
                       "The given folders fit none of the three layouts.", why,
                       "Name the folders of the others by their numbers, beside that of volume 1.");
    }

    bool EachOnItsOwnDrive() const {
        return std::ranges::all_of(subject_.set.given,
                                   [](const Path& folder) { return IsEmpty(Parent(folder)); });
    }

    // Two given folders that both say they are volume k.
    void CheckTwice() {
        if (out_.Has("volume-number-twice")) return;
        const std::vector<Path>& given = subject_.set.given;
        for (std::size_t i = 0; i < given.size(); ++i)
            for (const Path& marker : NumberedMarkers(given[i]))
                for (std::size_t j = i + 1; j < given.size(); ++j) {
                    const Path other = Join(given[j], FileName(marker));
                    if (ReadMtbDir(other.Text()).empty()) continue;
                    out_.Error("volume-number-twice", other.Text(),
                               "Two of the given folders say that they are volume " +
                                   std::to_string(NumberIn(marker)) + ".",
                               "Only one of them can be found.",
                               "Give each volume a number of its own.");
                }
    }

    // Given folders that the launcher does not come to.
    void CheckGiven() {
        if (subject_.view.layout == Layout::Incomplete) return;
        for (const Path& folder : subject_.set.given) {
            const bool used =
                std::ranges::any_of(subject_.view.folders, [&](const std::string& volume) {
                    return SameFolder(Path(volume), folder) || LiesIn(volume, folder);
                });
            if (!used)
                out_.Error("folder-not-a-volume", folder.Text(),
                           "The launcher does not come to this folder.",
                           "It finds all volumes that the count file counts without it.",
                           "Write the right number into inst\\volumes.txt, or leave the folder "
                           "out.");
        }
    }

    const Subject& subject_;
    Findings& out_;
    const Path& media_;
    Path parent_;
    int all_;                             // volumes, as the count file says
    int count_;                           // of them, those that are looked at one by one
    std::string id_;                      // of the media
    std::set<long long> traces_;          // of markers, in volume 1's folder
    std::map<long long, Path> misnamed_;  // folders beside it
};

}  // namespace

void CheckVolumes(const Subject& subject, Findings& out) {
    VolumeSet(subject, out).Check();
}

}  // namespace launcher::mediatool
