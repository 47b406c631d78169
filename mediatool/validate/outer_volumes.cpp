#include "mediatool/validate/outer_volumes.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {
namespace {

// As the launcher tells a marker by its name: one or two characters that begin with a number, and
// ".txt" in lower case.
int NumberForLauncher(const std::string& name) {
    const bool named = (name.size() == 5 || name.size() == 6) && name.ends_with(".txt");
    return named ? ToIntOr(name.substr(0, name.size() - 4), -1) : -1;
}

struct OuterMarker {
    Path folder;
    std::string name;
    int number;

    Path File() const { return Join(folder, name); }
    bool IsRegular() const { return name == MarkerName(number); }
};

std::vector<OuterMarker> MarkersIn(const Path& folder) {
    std::vector<OuterMarker> markers;
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>()))
        if (const int number = NumberForLauncher(entry.name); !entry.isFolder && number > 0)
            markers.push_back({folder, entry.name, number});
    return markers;
}

// All markers of the nearest ancestor that has any: one of them is the launcher's.
std::vector<OuterMarker> NearestMarkers(const Path& media) {
    for (Path folder = Parent(media); !IsEmpty(folder); folder = Parent(folder))
        if (std::vector<OuterMarker> markers = MarkersIn(folder); !markers.empty()) return markers;
    return {};
}

// The outer volume of volume 1 has no marker, but another one holds a volume of the media.
bool ReportUnmarked(const NestedMedia& media, Findings& out) {
    for (const VolumeInOuter& volume : VolumesInOuter(media.folder, media.id)) {
        const int number = volume.outer - volume.number + 1;
        if (number < 1) continue;
        out.Error("outer-marker-missing", MarkerIn(volume.first, number).Text(),
                  "Outer volume " + std::to_string(number) + " has no marker.",
                  "The launcher does not come to the outer volumes, such as that with volume " +
                      std::to_string(volume.number) + " of the media.",
                  "Write the file with the line MTBDIR= and the identifier of the outer volumes.");
        return true;
    }
    return false;
}

// A file that holds an identifier and whose name the launcher passes by.
bool ReportOverlooked(const Path& media, Findings& out) {
    for (Path folder = Parent(media); !IsEmpty(folder); folder = Parent(folder))
        for (const Entry& entry : List(folder).value_or(std::vector<Entry>())) {
            const std::string lower = InLowerCase(entry.name);
            const Path file = Join(folder, entry.name);
            if (entry.isFolder || !lower.ends_with(".txt") ||
                !IsNumber(lower.substr(0, lower.size() - 4)) || ReadMtbDir(file.Text()).empty())
                continue;
            const std::string why = "The launcher does not take it for an outer volume's marker.";
            if (NumberForLauncher(lower) > 0)
                out.Error("outer-marker-upper-case", file.Text(),
                          "The name of the outer volume's marker is not in lower case.", why,
                          "Rename it to " + lower + ".");
            else if (lower.size() > 6)
                out.Error("outer-marker-number-too-high", file.Text(),
                          "The number of the outer volume has more than two digits.", why,
                          "Number the outer volumes from 1 to 99.");
            else
                out.Error("outer-marker-zero", file.Text(), "The number of the outer volume is 0.",
                          why, "Number the outer volumes from 1 to 99.");
            return true;
        }
    return false;
}

class OuterSet {
  public:
    OuterSet(const NestedMedia& media, const OuterMarker& first, Findings& out)
        : media_(media),
          first_(first),
          out_(out),
          id_(ReadMtbDir(first.File().Text())),
          parent_(Parent(first.folder)),
          relative_(RelativePath(Parent(media.folder), first.folder)) {}

    void CheckIncomplete() {
        CheckMarkerText(first_.File(), out_);
        if (id_.empty()) return;
        if (IsEmpty(parent_)) {
            out_.Error("outer-volume-at-drive-root", first_.File().Text(),
                       "The outer volume is at the root of a drive.",
                       "The other outer volumes have to be in folders beside its own.",
                       "Copy the outer volumes into folders named by their numbers.");
            return;
        }
        const int looked = std::min(media_.count, kMostLookedAt);
        for (int j = 2; j <= looked; ++j)
            CheckVolume(j);
        if (media_.count > looked)
            missing_.AddUnnamed(
                media_.count - looked -
                    CountNumbered(parent_, "", OuterNumber(looked + 1), OuterNumber(media_.count)),
                parent_);
        ReportMissing();
        missingInside_.Report(out_);
    }

    void CheckComplete() {
        for (int j = 1; j <= media_.count; ++j)
            CheckMarkerText(j == 1 ? first_.File() : MarkerOf(j), out_);
        if (id_ == media_.id)
            out_.Warning("outer-id-same", first_.File().Text(),
                         "The outer volumes have the same identifier as the media in them.",
                         "The installer cannot tell one set from the other.",
                         "Give the outer volumes an identifier of their own.");
    }

  private:
    long long OuterNumber(long long j) const { return first_.number + j - 1; }
    Path FolderOf(int j) const { return Join(parent_, std::to_string(OuterNumber(j))); }
    Path MarkerOf(int j) const { return Join(FolderOf(j), MarkerName(OuterNumber(j))); }

    void CheckVolume(int j) {
        const std::string number = std::to_string(OuterNumber(j));
        if (!IsFolder(FolderOf(j))) {
            missing_.Add(OuterNumber(j), FolderOf(j));
            return;
        }
        const std::string id = ReadMtbDir(MarkerOf(j).Text());
        if (id.empty()) {
            ReportNoMarker(j, number);
        } else {
            CheckMarkerText(MarkerOf(j), out_);
            if (id == id_)
                CheckInner(j);
            else
                out_.Error("outer-id-differs", MarkerOf(j).Text(),
                           "The identifier is \"" + Visible(id) +
                               "\"; the first outer volume has \"" + Visible(id_) + "\".",
                           "The launcher takes it for a volume of another set, and gives up on "
                           "all of them.",
                           "Give all outer volumes the same identifier, to the letter.");
        }
    }

    void ReportMissing() {
        if (missing_.Total() == 0) return;
        const std::string beside = " beside outer volume " + std::to_string(first_.number);
        std::string action = missing_.Total() == 1
                                 ? "Put it into the folder " + missing_.Numbers() + beside
                                 : "Put each into a folder named by its number" + beside;
        if (missing_.Total() == media_.count - 1)
            action += "; or delete " + first_.name + ", when the media is in no outer volume";
        out_.Error("outer-volume-missing", missing_.FirstFile().Text(), missing_.Sentence(),
                   "For the launcher, the volumes of the media in them are not there.",
                   action + ".");
    }

    void ReportNoMarker(int j, const std::string& number) {
        if (Look(MarkerOf(j)))
            CheckMarkerText(MarkerOf(j), out_);
        else
            out_.Error("outer-marker-missing", MarkerOf(j).Text(),
                       "Outer volume " + number + " has no marker.",
                       "For the launcher, the volume in it is not there.",
                       "Write the file with the line MTBDIR=" + id_ + ".");
    }

    void CheckInner(int j) {
        const Path folder = Join(Join(FolderOf(j), relative_.Text()), std::to_string(j));
        const Path marker = Join(folder, MarkerName(j));
        if (!IsFolder(folder)) {
            out_.Error("outer-inner-folder-missing", folder.Text(),
                       "Volume " + std::to_string(j) + " is not at its place in outer volume " +
                           std::to_string(OuterNumber(j)) + ".",
                       "It has to be below the same folders as volume 1, in one named by its "
                       "number.",
                       "Move it there.");
            return;
        }
        if (ReadMtbDir(marker.Text()).empty()) {
            if (!ExplainMissingMarker({folder, j, media_.id}, out_)) missingInside_.Add(j, marker);
            return;
        }
        CheckMarkerText(marker, out_);
        CompareIdentifiers(marker, media_.id, out_);
    }

    const NestedMedia& media_;
    const OuterMarker& first_;
    Findings& out_;
    std::string id_;  // of the outer volumes
    Path parent_;
    Path relative_;
    MissingVolumes missing_{"outer volume"};
    MissingVolumes missingInside_;
};

// A file that only looks like a marker: it has no identifier of an outer set, and no other volume
// of such a set is beside its folder.
bool IsStray(const NestedMedia& media, const OuterMarker& marker) {
    const std::string id = ReadMtbDir(marker.File().Text());
    if (!id.empty() && id != media.id) return false;
    const Path parent = Parent(marker.folder);
    const int last = std::min(media.count, kMostLookedAt);
    for (int j = 2; j <= last && !IsEmpty(parent); ++j) {
        const int number = marker.number + j - 1;
        if (Look(MarkerIn(Join(parent, std::to_string(number)), number))) return false;
    }
    return true;
}

// Reports the stray ones and leaves the others.
void RemoveStrays(const NestedMedia& media, std::vector<OuterMarker>& markers, Findings& out) {
    std::erase_if(markers, [&](const OuterMarker& marker) {
        if (!IsStray(media, marker)) return false;
        out.Error("outer-marker-stray", marker.File().Text(),
                  "A file above volume 1 is named like an outer volume's marker, but is none.",
                  "When volumes are missing, the launcher takes it for one and looks no further "
                  "up.",
                  "Delete or rename it.");
        return true;
    });
}

void CheckFirstMarkers(const std::vector<OuterMarker>& markers, Findings& out) {
    if (markers.size() > 1)
        out.Error("outer-markers-two", markers[1].File().Text(),
                  "Two files in one folder look like markers of an outer volume.",
                  "The launcher takes the one that the system lists first.", "Leave one of them.");
    if (!markers.front().IsRegular())
        out.Error("outer-marker-irregular", markers.front().File().Text(),
                  "A file above the media looks like the marker of outer volume " +
                      std::to_string(markers.front().number) + ".",
                  "The launcher takes it for one and looks no further up.",
                  "Rename or remove it, unless it is one: then name it " +
                      MarkerName(markers.front().number) + ".");
}

}  // namespace

bool IsOuterMarkerName(const std::string& name) {
    return NumberForLauncher(name) > 0;
}

bool CheckIncompleteOuterVolumes(const NestedMedia& media, Findings& out) {
    std::vector<OuterMarker> markers = NearestMarkers(media.folder);
    if (markers.empty()) return ReportOverlooked(media.folder, out) || ReportUnmarked(media, out);
    while (!markers.empty()) {
        const Path folder = markers.front().folder;
        RemoveStrays(media, markers, out);
        if (!markers.empty()) {
            CheckFirstMarkers(markers, out);
            OuterSet(media, markers.front(), out).CheckIncomplete();
            return true;
        }
        markers = NearestMarkers(folder);  // what the strays hide
    }
    return ReportUnmarked(media, out);
}

void CheckCompleteOuterVolumes(const NestedMedia& media, Findings& out) {
    std::vector<OuterMarker> markers = NearestMarkers(media.folder);
    RemoveStrays(media, markers, out);
    if (markers.empty()) return;
    CheckFirstMarkers(markers, out);
    OuterSet(media, markers.front(), out).CheckComplete();
}

}  // namespace launcher::mediatool
