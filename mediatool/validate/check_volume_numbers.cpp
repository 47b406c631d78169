// Volumes and markers that there are too many of: numbers beyond the count file's, and numbers that
// are there twice.

#include <limits>
#include <set>
#include <vector>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/disc_set.h"

namespace launcher::mediatool {
namespace {

class VolumeNumbers {
  public:
    VolumeNumbers(const Subject& subject, const DiscSet& set, Findings& out)
        : set_(set),
          out_(out),
          parent_(ParentOfVolumes(set.first)),
          layout_(subject.view.layout),
          folders_(subject.view.folders) {}

    void Check(const std::vector<Path>& given) {
        if (set_.count == 1 || layout_ == Layout::OneFolder) CheckFolder(1, set_.first);
        if (set_.count == 1 || layout_ == Layout::Siblings) CheckFoldersBeyond();
        if (set_.count == 1 || layout_ == Layout::Outer) CheckOuterVolumesBeyond();
        if (set_.count == 1 || layout_ == Layout::OneFolder) return;
        if (layout_ == Layout::Incomplete) {
            CheckFolder(1, set_.first);
            for (const VolumeNumber k : NumberedFolders(parent_, 2, set_.count))
                if (!SameName(Beside(k), set_.first)) CheckFolder(k, Beside(k));
            if (!isAnyTwice_) CheckGiven(given);
        } else {
            VolumeNumber number = 0;
            for (const std::string& folder : folders_)
                CheckFolder(++number, Path(folder));
        }
    }

  private:
    Path Beside(VolumeNumber k) const { return Join(parent_, std::to_string(k)); }

    // The other numbers in the folder of volume `own`.
    void CheckFolder(VolumeNumber own, const Path& folder) {
        for (const Path& marker : NumberedMarkers(folder)) {
            const VolumeNumber number = NumberIn(marker);
            if (number == own || !set_.Has(marker)) continue;
            if (number > set_.count)
                ReportBeyond(marker);
            else if (layout_ != Layout::OneFolder && set_.Has(MarkerIn(HomeOf(number), number)))
                ReportTwice(marker);
        }
    }

    Path HomeOf(VolumeNumber number) const {
        const auto index = static_cast<std::size_t>(number) - 1;
        return index < folders_.size() ? Path(folders_[index]) : Beside(number);
    }

    // A marker in the folder of another volume, while the volume itself is at its place.
    void ReportTwice(const Path& marker) {
        isAnyTwice_ = true;
        out_.AddFirst({{SameName(Parent(marker), set_.first), "volume-number-twice/in-volume-1"},
                       {true, "volume-number-twice"}},
                      marker, {std::to_string(NumberIn(marker))});
    }

    // Given folders that claim to be the same volume as one before them.
    void CheckGiven(const std::vector<Path>& given) {
        std::set<VolumeNumber> claimed;
        for (const Path& folder : given)
            for (const Path& marker : NumberedMarkers(folder))
                if (set_.Has(marker) && !claimed.insert(NumberIn(marker)).second)
                    out_.Add("volume-number-twice/given", marker,
                             {std::to_string(NumberIn(marker))});
    }

    void CheckFoldersBeyond() {
        constexpr VolumeNumber kLast = std::numeric_limits<int>::max();
        for (const VolumeNumber k : NumberedFolders(parent_, VolumeNumber{set_.count} + 1, kLast))
            if (const Path marker = MarkerIn(Beside(k), k);
                !SameName(Beside(k), set_.first) && set_.Has(marker))
                ReportBeyond(marker);
    }

    void CheckOuterVolumesBeyond() {
        for (const VolumeInOuter& volume : VolumesInOuter(set_.first, set_.id, set_.ids))
            if (volume.number > set_.count) ReportBeyond(volume.marker);
    }

    void ReportBeyond(const Path& marker) {
        out_.Add("volume-beyond-count", marker,
                 {std::to_string(NumberIn(marker)), std::to_string(set_.count)});
    }

    const DiscSet& set_;
    Findings& out_;
    Path parent_;
    Layout layout_;
    const std::vector<std::string>& folders_;  // of the volumes that the launcher finds
    bool isAnyTwice_ = false;
};

}  // namespace

void CheckVolumeNumbers(const Subject& subject, Findings& out) {
    if (!subject.view.count) return;
    const std::string& id = subject.ids.In(MarkerIn(subject.Media(), 1));
    const DiscSet set{subject.Media(), id, subject.view.count->count, subject.ids};
    if (!set.id.empty() && set.count >= 1)
        VolumeNumbers(subject, set, out).Check(subject.set.given);
}

}  // namespace launcher::mediatool
