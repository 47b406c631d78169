// The volumes of a split media: their folders and markers, and what keeps the launcher from
// putting them together.

#include <algorithm>
#include <vector>

#include "media/folder_names.h"
#include "tools/mediatool/checks.h"
#include "tools/mediatool/files.h"
#include "tools/mediatool/marker_bytes.h"
#include "tools/mediatool/outer_volumes.h"
#include "tools/mediatool/volume_markers.h"

namespace launcher::mediatool {
namespace {

// Beyond this many volumes the count file's own finding is enough.
constexpr int kMostLookedAt = 199;

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
          parent_(Parent(media_)),
          count_(std::min(subject.view.count ? subject.view.count->count : 0, kMostLookedAt)),
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
            CheckCompleteOuterVolumes({media_, id_, count_}, out_);
        CheckBeyondCount();
    }

    // Volumes that the count does not count.
    void CheckBeyondCount() {
        std::vector<Path> candidates;
        if (subject_.view.layout == Layout::OneFolder)
            candidates = NumberedMarkers(media_);
        else if (subject_.view.layout == Layout::Siblings)
            for (const Entry& entry : List(parent_).value_or(std::vector<Entry>()))
                if (entry.isFolder && IsNumber(entry.name))
                    candidates.push_back(Join(Join(parent_, entry.name), entry.name + ".txt"));
        for (const Path& marker : candidates)
            if (NumberIn(marker) > count_ && ReadMtbDir(marker.Text()) == id_)
                out_.Error("volume-beyond-count", marker.Text(),
                           "There is a volume " + std::to_string(NumberIn(marker)) +
                               ", but the count file says " + std::to_string(count_) + ".",
                           "The installer is not told of it.",
                           "Write the right number into inst\\volumes.txt.");
    }

    void CheckIncomplete() {
        const Path first = Join(media_, MarkerName(1));
        if (id_.empty()) {
            ExplainMissingMarker({media_, 1, {}}, out_);
            return;
        }
        CheckMarkerText(first, out_);
        if (HasTraceInOneFolder())
            CheckOneFolder();
        else if (HasTraceOfSiblings())
            CheckSiblings();
        else if (!CheckIncompleteOuterVolumes({media_, id_, count_}, out_))
            ReportElsewhere();
        CheckTwice();
    }

    bool HasTraceInOneFolder() const {
        for (int k = 2; k <= count_; ++k)
            if (HasTraceOfMarker(media_, k)) return true;
        return false;
    }

    bool HasTraceOfSiblings() const {
        if (IsEmpty(parent_)) return false;
        for (int k = 2; k <= count_; ++k)
            if (IsFolder(Sibling(k)) || FolderWithMarker(parent_, k, id_)) return true;
        return false;
    }

    Path Sibling(int k) const { return Join(parent_, std::to_string(k)); }

    void CheckOneFolder() {
        bool mixed = false;
        for (int k = 2; k <= count_; ++k) {
            const Path marker = Join(media_, MarkerName(k));
            if (!ReadMtbDir(marker.Text()).empty()) {
                CheckMarkerText(marker, out_);
                CompareIdentifiers(marker, id_, out_);
            } else if (!HasTraceOfMarker(media_, k) && IsFolder(Sibling(k))) {
                mixed = true;
            } else {
                ExplainMissingMarker({media_, k, id_}, out_);
            }
        }
        if (mixed)
            out_.Error("volumes-mixed-layouts", media_.Text(),
                       "Some volumes are in volume 1's folder and others beside it.",
                       "The launcher looks beside it only when none is in it.",
                       "Put all volumes into one folder, or each into a folder of its own.");
    }

    void CheckSiblings() {
        for (int k = 2; k <= count_; ++k) {
            const Path folder = Sibling(k);
            const Path marker = Join(folder, MarkerName(k));
            if (!ReadMtbDir(marker.Text()).empty()) {
                CheckMarkerText(marker, out_);
                CompareIdentifiers(marker, id_, out_);
            } else if (IsFolder(folder)) {
                ExplainMissingMarker({folder, k, id_}, out_);
            } else if (const auto other = FolderWithMarker(parent_, k, id_)) {
                out_.Error("volume-folder-named-otherwise", other->Text(),
                           "Volume " + std::to_string(k) + " is in a folder named " +
                               FileName(*other) + ".",
                           "The launcher looks for it in the folder " + std::to_string(k) +
                               " beside volume 1's.",
                           "Rename the folder to " + std::to_string(k) + ".");
            } else {
                ReportMissingVolume(folder, k, out_);
            }
        }
    }

    void ReportElsewhere() {
        const std::string rest = "volumes 2 to " + std::to_string(count_);
        const std::string why =
            "The launcher copies the installer to the temporary folder, and leaves it to the "
            "installer to ask for the other volumes.";
        if (subject_.set.given.size() == 1)
            out_.Warning("volumes-elsewhere", media_.Text(),
                         "Only volume 1 of " + std::to_string(count_) + " is here.", why,
                         "Nothing, when the others are on discs of their own; else put " + rest +
                             " into one of the layouts.");
        else if (EachOnItsOwnDrive())
            out_.Warning("volumes-on-other-drives", media_.Text(),
                         "Each volume is on a drive of its own.", why,
                         "Nothing, when they are discs to be put in one after the other.");
        else
            out_.Error(
                "no-layout-fits", media_.Text(), "The given folders fit none of the three layouts.",
                why, "Name the folders of " + rest + " by their numbers, beside that of volume 1.");
    }

    bool EachOnItsOwnDrive() const {
        return std::ranges::all_of(subject_.set.given,
                                   [](const Path& folder) { return IsEmpty(Parent(folder)); });
    }

    // Two given folders that both say they are volume k.
    void CheckTwice() {
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
    int count_;
    std::string id_;  // of the media
};

}  // namespace

void CheckVolumes(const Subject& subject, Findings& out) {
    VolumeSet(subject, out).Check();
}

}  // namespace launcher::mediatool
