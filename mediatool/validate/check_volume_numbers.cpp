// Volumes and markers that there are too many of: numbers beyond the count file's, and numbers that
// are there twice.

#include <algorithm>
#include <vector>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {
namespace {

class VolumeNumbers {
  public:
    VolumeNumbers(const Subject& subject, Findings& out)
        : out_(out),
          media_(subject.Media()),
          parent_(ParentOfVolumes(media_)),
          layout_(subject.view.layout),
          count_(subject.view.count ? subject.view.count->count : 0),
          folders_(subject.view.folders),
          id_(ReadMtbDir(MarkerIn(media_, 1).Text())) {}

    void Check() {
        if (id_.empty() || count_ < 1) return;
        if (count_ == 1 || layout_ == Layout::OneFolder) CheckFolder(1, media_);
        if (count_ == 1 || layout_ == Layout::Siblings) CheckFoldersBeyond();
        if (count_ == 1 || layout_ == Layout::Outer) CheckOuterVolumesBeyond();
        if (count_ == 1 || layout_ == Layout::OneFolder) return;
        if (layout_ == Layout::Incomplete) {
            CheckFolder(1, media_);
            for (int k = 2; k <= std::min(count_, kMostLookedAt); ++k)
                CheckFolder(k, Beside(k));
        } else {
            for (std::size_t i = 0; i < folders_.size(); ++i)
                CheckFolder(static_cast<int>(i) + 1, Path(folders_[i]));
        }
    }

  private:
    Path Beside(long long k) const { return Join(parent_, std::to_string(k)); }
    bool IsOurs(const Path& marker) const { return ReadMtbDir(marker.Text()) == id_; }

    // The other numbers in the folder of volume `own`.
    void CheckFolder(int own, const Path& folder) {
        for (const Path& marker : NumberedMarkers(folder)) {
            const long long number = NumberIn(marker);
            if (number == own || !IsOurs(marker)) continue;
            if (number > count_)
                ReportBeyond(marker);
            else if (layout_ != Layout::OneFolder)
                CheckElsewhere(number, marker);
        }
    }

    // A marker in the folder of another volume: is the volume itself at its own place?
    void CheckElsewhere(long long number, const Path& marker) {
        const auto index = static_cast<std::size_t>(number) - 1;
        const Path home = number == 1               ? media_
                          : index < folders_.size() ? Path(folders_[index])
                                                    : Beside(number);
        if (!IsOurs(MarkerIn(home, number))) return;
        const std::string what = "Volume " + std::to_string(number) +
                                 " has a second marker, in another volume's folder.";
        const std::string action = "Remove the marker that is in the wrong folder.";
        if (SameName(Parent(marker).Text(), media_.Text()))
            out_.Error("volume-number-twice", marker.Text(), what,
                       "In volume 1's folder it makes the launcher look for all volumes there.",
                       action);
        else
            out_.Warning("volume-number-twice", marker.Text(), what,
                         "The launcher does not read it; the installer may take the folder for "
                         "that volume.",
                         action);
    }

    void CheckFoldersBeyond() {
        for (const Entry& entry : List(parent_).value_or(std::vector<Entry>())) {
            if (!entry.isFolder || !IsNumber(entry.name)) continue;
            const Path folder = Join(parent_, entry.name);
            const Path marker = Join(folder, entry.name + ".txt");
            if (NumberIn(marker) > count_ && !SameName(folder.Text(), media_.Text()) &&
                IsOurs(marker))
                ReportBeyond(marker);
        }
    }

    void CheckOuterVolumesBeyond() {
        for (const VolumeInOuter& volume : VolumesInOuter(media_, id_))
            if (volume.number > count_) ReportBeyond(volume.marker);
    }

    void ReportBeyond(const Path& marker) {
        out_.Error("volume-beyond-count", marker.Text(),
                   "There is a volume " + std::to_string(NumberIn(marker)) +
                       ", but the count file says " + std::to_string(count_) + ".",
                   "The installer is not told of it.",
                   "Write the right number into inst\\volumes.txt, or remove the marker.");
    }

    Findings& out_;
    const Path& media_;
    Path parent_;
    Layout layout_;
    int count_;
    std::vector<std::string> folders_;  // of the volumes that the launcher finds
    std::string id_;                    // of the media
};

}  // namespace

void CheckVolumeNumbers(const Subject& subject, Findings& out) {
    VolumeNumbers(subject, out).Check();
}

}  // namespace launcher::mediatool
