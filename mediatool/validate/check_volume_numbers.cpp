// Volumes and markers that there are too many of: numbers beyond the count file's, and numbers that
// are there twice.

#include <vector>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

class VolumeNumbers {
  public:
    VolumeNumbers(const Subject& subject, Findings& out)
        : out_(out),
          media_(subject.Media()),
          parent_(ParentOfVolumes(media_)),
          layout_(subject.view.layout),
          count_(subject.view.count->count),
          folders_(subject.view.folders),
          ids_(subject.ids),
          id_(ids_.In(MarkerIn(media_, 1))) {}

    void Check(const std::vector<Path>& given) {
        if (id_.empty() || count_ < 1) return;
        if (count_ == 1 || layout_ == Layout::OneFolder) CheckFolder(1, media_);
        if (count_ == 1 || layout_ == Layout::Siblings) CheckFoldersBeyond();
        if (count_ == 1 || layout_ == Layout::Outer) CheckOuterVolumesBeyond();
        if (count_ == 1 || layout_ == Layout::OneFolder) return;
        if (layout_ == Layout::Incomplete) {
            CheckFolder(1, media_);
            for (const VolumeNumber k : NumberedFolders(parent_, 2, count_))
                if (!SameName(Beside(k), media_)) CheckFolder(k, Beside(k));
            if (!isAnyTwice_) CheckGiven(given);
        } else {
            VolumeNumber number = 0;
            for (const std::string& folder : folders_)
                CheckFolder(++number, Path(folder));
        }
    }

  private:
    Path Beside(VolumeNumber k) const { return Join(parent_, std::to_string(k)); }
    bool IsOurs(const Path& marker) const { return ids_.In(marker) == id_; }

    // The other numbers in the folder of volume `own`.
    void CheckFolder(VolumeNumber own, const Path& folder) {
        for (const Path& marker : NumberedMarkers(folder)) {
            const VolumeNumber number = NumberIn(marker);
            if (number == own || !IsOurs(marker)) continue;
            if (number > count_)
                ReportBeyond(marker);
            else if (layout_ != Layout::OneFolder && IsOurs(MarkerIn(HomeOf(number), number)))
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
        out_.AddFirst({{SameName(Parent(marker), media_), "volume-number-twice/in-volume-1"},
                       {true, "volume-number-twice"}},
                      marker, {std::to_string(NumberIn(marker))});
    }

    // Two given folders that both claim to be the same volume.
    void CheckGiven(const std::vector<Path>& given) {
        for (std::size_t i = 0; i < given.size(); ++i)
            for (const Path& marker : NumberedMarkers(given[i]))
                for (std::size_t j = i + 1; IsOurs(marker) && j < given.size(); ++j)
                    if (const Path other = Join(given[j], FileName(marker)); IsOurs(other))
                        out_.Add("volume-number-twice/given", other,
                                 {std::to_string(NumberIn(marker))});
    }

    void CheckFoldersBeyond() {
        for (const Entry& entry : EntriesOf(parent_)) {
            const Path folder = Join(parent_, entry.name);
            const Path marker = Join(folder, entry.name + kVolumeMarkerSuffix);
            if (entry.isFolder && NumberIn(marker) > count_ && !SameName(folder, media_) &&
                IsOurs(marker))
                ReportBeyond(marker);
        }
    }

    void CheckOuterVolumesBeyond() {
        for (const VolumeInOuter& volume : VolumesInOuter(media_, id_, ids_))
            if (volume.number > count_) ReportBeyond(volume.marker);
    }

    void ReportBeyond(const Path& marker) {
        out_.Add("volume-beyond-count", marker,
                 {std::to_string(NumberIn(marker)), std::to_string(count_)});
    }

    Findings& out_;
    const Path& media_;
    Path parent_;
    Layout layout_;
    int count_;
    const std::vector<std::string>& folders_;  // of the volumes that the launcher finds
    const MarkerIds& ids_;
    const std::string& id_;  // of the set
    bool isAnyTwice_ = false;
};

}  // namespace

void CheckVolumeNumbers(const Subject& subject, Findings& out) {
    if (subject.view.count) VolumeNumbers(subject, out).Check(subject.set.given);
}

}  // namespace launcher::mediatool
