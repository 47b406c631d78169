// Markers of another set where a new one is going to be.

#include <algorithm>

#include "media/volume_files.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/create/plan.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {
namespace {

class StaleMarkers {
  public:
    StaleMarkers(const CreateRequest& request, const Plan& plan)
        : request_(request), plan_(plan), parent_(ParentOfVolumes(plan.VolumeOne())) {
        if (request.layout != Layout::Outer) return;
        const Path outer = Join(plan.out, std::to_string(request.firstOuter));
        for (Path above = Parent(plan.VolumeOne()); !SameName(above, Parent(outer));
             above = Parent(above))
            above_.push_back(above);
    }

    void Refuse() const {
        for (const std::vector<Path>& folders : {plan_.FoldersOfVolumes(), above_})
            for (const Path& folder : folders)
                CheckEntriesOf(folder);
        if (LooksBeside())
            for (const Entry& entry : EntriesOf(parent_))
                CheckBeside(Join(parent_, entry.name));
        CheckOuterVolumes();
        for (const PlannedFile& file : plan_.files)
            if (file.IsCopy()) Check(file.path, file.source);
    }

  private:
    // The launcher, or the installer that is told nothing of volumes, when there is only one.
    bool LooksBeside() const {
        return request_.layout != Layout::OneFolder || request_.volumes == 1;
    }

    // Volumes of the new set in outer volumes that it does not have.
    void CheckOuterVolumes() const {
        if (request_.layout != Layout::Outer && request_.volumes > 1) return;
        for (const VolumeInOuter& volume :
             VolumesInOuter(plan_.VolumeOne(), request_.id, MarkerIds()))
            if (!IsWritten(volume.marker)) RefuseOther(volume.marker);
    }

    [[noreturn]] static void RefuseOther(const Path& marker) {
        throw Refused("\"" + marker.Text() +
                      "\" is the marker of a volume that is not at this place in the new set; "
                      "remove it first.");
    }

    void CheckEntriesOf(const Path& folder) const {
        for (const Entry& entry : EntriesOf(folder))
            if (!entry.isFolder) Check(Join(folder, entry.name), Join(folder, entry.name));
    }

    // Whatever is there: what is no folder of a volume holds no such marker.
    void CheckBeside(const Path& folder) const {
        const Path marker = Join(folder, FileName(folder) + kVolumeMarkerSuffix);
        Check(marker, marker);
    }

    // `file` is at `place`, or is going to be.
    void Check(const Path& place, const Path& file) const {
        if (IsNumberedAbove(place))
            throw Refused("\"" + file.Text() +
                          "\" is named like the marker of an outer volume, and the launcher would "
                          "take it for one; rename or remove it first.");
        if (IsOfAnotherVolume(place, file)) RefuseOther(file);
    }

    bool IsWritten(const Path& place) const {
        return std::ranges::any_of(
            plan_.Own(), [&place](const PlannedFile& file) { return SameName(file.path, place); });
    }

    // In a folder where the launcher looks for the marker of the first outer volume, it takes any
    // file of such a name. Another case of letters hides the right one from it.
    bool IsNumberedAbove(const Path& place) const {
        if (!IsAmong(Parent(place), above_)) return false;
        const std::string name = FileName(place);
        return IsWritten(place) ? name != MarkerName(request_.firstOuter)
                                : OuterMarkerNumber(name) > 0;
    }

    bool IsOfAnotherVolume(const Path& place, const Path& file) const {
        const VolumeNumber number = NumberIn(place);
        if (number < 1 || IsWritten(place)) return false;
        const std::string id = ReadMtbDir(file.Text());
        if (id.empty()) return false;
        const Path folder = Parent(place);
        if (IsAmong(folder, plan_.volumes)) return true;
        // Beside volume 1: a volume of another set is none of the launcher's business, but for the
        // outer layout, where it looks here first.
        const bool isBeside = number > 1 && SameName(folder, Join(parent_, std::to_string(number)));
        const bool isLookedAt = request_.layout == Layout::Outer && number <= request_.volumes;
        return isBeside && (id == request_.id || isLookedAt);
    }

    const CreateRequest& request_;
    const Plan& plan_;
    Path parent_;              // of volume 1's folder
    std::vector<Path> above_;  // from there up to the first outer volume
};

}  // namespace

void RefuseStaleMarkers(const CreateRequest& request, const Plan& plan) {
    StaleMarkers(request, plan).Refuse();
}

}  // namespace launcher::mediatool
