// Volumes that are given as folders or drives of their own.

#include <string>

#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/disc_set.h"

namespace launcher::mediatool {
namespace {

class GivenVolumes {
  public:
    GivenVolumes(const DiscSet& set, Findings& out)
        : set_(set), out_(out), missing_(2, set.count) {}

    void CheckFolder(const Path& folder) {
        if (CheckOurs(folder)) return;
        if (Look(Join(folder, kLauncherName)) || Look(CountFileIn(folder)))
            out_.Add("folder-other-medium", folder);
        else if (!CheckMeant(folder))
            unmarked_.push_back(folder);
    }

    // The ones that are left over, and those that have no marker and may be these.
    void CheckRest() {
        const auto unmarked = static_cast<VolumeNumber>(unmarked_.size());
        for (const Path& folder : unmarked_)
            if (unmarked == 1 && missing_.Total() == 1)
                out_.Add("volume-marker-missing", MarkerIn(folder, missing_.First()),
                         {missing_.Numbers(), set_.id});
            else
                out_.Add("volume-marker-missing/of-given", folder, {set_.id});
        if (missing_.Total() > unmarked)
            out_.Add("volume-missing/not-given", set_.first, {missing_.Sentence("volume")});
    }

  private:
    // Whether the folder has markers of the set.
    bool CheckOurs(const Path& folder) {
        bool isOurs = false;
        for (const Path& marker : NumberedMarkers(folder)) {
            const VolumeNumber number = NumberIn(marker);
            if (number == 1 || !set_.Has(marker)) continue;
            isOurs = true;
            if (number > set_.count)
                out_.Add("volume-beyond-count", marker,
                         {std::to_string(number), std::to_string(set_.count)});
            else
                Check(number, folder);
        }
        return isOurs;
    }

    // Whether it has files that are meant to be such markers.
    bool CheckMeant(const Path& folder) {
        for (const auto& [number, marker] : MarkersMeantIn(folder)) {
            if (number < 2 || number > set_.count) continue;
            Check(number, folder);
            return true;
        }
        return false;
    }

    void Check(VolumeNumber number, const Path& folder) {
        missing_.Remove(number);
        CheckVolume(
            set_, number, [&folder](VolumeNumber) { return folder; }, out_);
    }

    const DiscSet& set_;
    Findings& out_;
    MissingVolumes missing_;
    std::vector<Path> unmarked_;
};

}  // namespace

void CheckGivenVolumes(const DiscSet& set, const std::vector<Path>& given, Findings& out) {
    GivenVolumes volumes(set, out);
    for (const Path& folder : given)
        if (!SameName(folder, set.first)) volumes.CheckFolder(folder);
    volumes.CheckRest();
}

}  // namespace launcher::mediatool
