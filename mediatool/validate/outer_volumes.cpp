// The numbered outer volumes that a disc set is nested in.

#include <algorithm>
#include <vector>

#include "media/volume_files.h"
#include "media/volume_search.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/disc_set.h"

namespace launcher::mediatool {
namespace {

// What the launcher takes for the marker of an outer volume, and the set that it would be of.
struct FirstMarker {
    OuterMarker marker;
    OuterSet set;

    Path File() const { return marker.File(); }
};

// All of the nearest ancestor that has any, that of the launcher's search first.
std::vector<FirstMarker> NearestMarkers(const DiscSet& set, const Path& below) {
    std::vector<FirstMarker> markers;
    for (Path folder = Parent(below); markers.empty() && !IsEmpty(folder); folder = Parent(folder))
        for (const Entry& entry : EntriesOf(folder))
            if (const int number = OuterMarkerNumber(entry.name); !entry.isFolder && number > 0) {
                const OuterMarker marker{number, entry.name, folder};
                markers.push_back({marker, OuterSetOf(set.first, marker)});
            }
    std::stable_partition(markers.begin(), markers.end(), [&set](const FirstMarker& each) {
        return set.ids.WasAskedFor(each.File());
    });
    return markers;
}

// The outer volume of volume 1 has no marker, but another one holds a volume of the set.
bool ReportUnmarked(const DiscSet& set, Findings& out) {
    for (const VolumeInOuter& volume : VolumesInOuter(set.first, set.id, set.ids)) {
        const VolumeNumber number = volume.outer - volume.number + 1;
        if (number < 1) continue;
        const Path other = Join(Parent(volume.first), std::to_string(volume.outer));
        const std::string& id = set.ids.In(MarkerIn(other, volume.outer));
        out.Add("outer-marker-missing", MarkerIn(volume.first, number),
                {std::to_string(number), std::to_string(volume.number),
                 id.empty() ? "identifier" : id});
        return true;
    }
    return false;
}

// A file that holds an identifier and whose name the launcher passes by.
bool ReportOverlooked(const DiscSet& set, Findings& out) {
    for (Path folder = Parent(set.first); !IsEmpty(folder); folder = Parent(folder))
        for (const Entry& entry : EntriesOf(folder)) {
            const std::string lower = InLowerCase(entry.name);
            const std::string stem = lower.substr(0, lower.find(kVolumeMarkerSuffix));
            const Path file = Join(folder, entry.name);
            if (entry.isFolder || lower != stem + kVolumeMarkerSuffix || !IsNumber(stem) ||
                set.ids.In(file).empty())
                continue;
            return out.AddFirst({{OuterMarkerNumber(lower) > 0, "outer-marker-upper-case"},
                                 {stem.size() > 2, "outer-marker-number-too-high"},
                                 {true, "outer-marker-zero"}},
                                file, {lower});
        }
    return false;
}

class OuterVolumes {
  public:
    OuterVolumes(const DiscSet& inner, const FirstMarker& first, Findings& out)
        : inner_(inner), first_(first.marker), out_(out), set_(first.set) {}

    void Check() {
        CheckMarkerText(first_.File(), set_.id, out_);
        if (set_.id.empty()) return;
        const Path parent = Parent(set_.folder);
        if (IsEmpty(parent)) {
            out_.Add("outer-volume-at-drive-root", first_.File());
            return;
        }
        for (const VolumeNumber number : NumberedFolders(parent, set_.first + 1, Last()))
            CheckVolumeIn(number);
        if (missing_.Total() > 0) ReportMissing();
        if (set_.id == inner_.id) out_.Add("outer-id-same", first_.File());
    }

  private:
    VolumeNumber Last() const { return set_.first + inner_.count - 1; }
    Path MarkerOf(VolumeNumber number) const {
        return MarkerIn(OuterVolumeFolder(set_, number), number);
    }

    void CheckVolumeIn(VolumeNumber number) {
        missing_.Remove(number);
        const VolumeNumber inside = number - set_.first + 1;
        const Path marker = MarkerOf(number);
        if (!Look(marker)) {
            if (!CheckDepth("Outer volume " + std::to_string(number), Parent(marker),
                            FileName(marker), set_.id, inner_.ids, out_))
                out_.Add("outer-marker-missing", marker,
                         {std::to_string(number), std::to_string(inside), set_.id});
            return;
        }
        const std::string& id = inner_.ids.In(marker);
        CheckMarkerText(marker, id, out_);
        if (id.empty()) return;
        const Path folder = FolderInOuterVolume(set_, inside);
        if (id != set_.id)
            out_.Add("outer-id-differs", marker,
                     {Quoted(Harmless(id, "")), Quoted(Harmless(set_.id, ""))});
        else if (!IsFolder(folder))
            out_.Add("outer-inner-folder-missing", folder,
                     {std::to_string(inside), std::to_string(number)});
        else
            CheckVolume(
                inner_, inside, [this](VolumeNumber k) { return FolderInOuterVolume(set_, k); },
                out_);
    }

    void ReportMissing() {
        const std::string beside = " beside outer volume " + std::to_string(set_.first);
        std::string action = missing_.Total() == 1
                                 ? "Put it into the folder " + missing_.Numbers() + beside
                                 : "Put each into a folder named by its number" + beside;
        if (missing_.Total() == inner_.count - 1)
            action += "; or delete " + first_.fileName + ", if the disc set is in no outer volume";
        out_.Add("outer-volume-missing", OuterVolumeFolder(set_, missing_.First()),
                 {missing_.Sentence("outer volume"), action});
    }

    const DiscSet& inner_;
    const OuterMarker& first_;
    Findings& out_;
    const OuterSet& set_;
    MissingVolumes missing_{set_.first + 1, Last()};
};

// A file that only looks like a marker: it has no identifier of an outer set, and no other volume
// of such a set is beside its folder.
bool IsStray(const DiscSet& set, const OuterSet& outer) {
    if (!outer.id.empty() && outer.id != set.id) return false;
    const Path parent = Parent(outer.folder);
    if (IsEmpty(parent)) return true;
    const auto others = NumberedFolders(parent, outer.first + 1, outer.first + set.count - 1);
    return std::ranges::none_of(others, [&](VolumeNumber number) {
        return Look(MarkerIn(OuterVolumeFolder(outer, number), number)).has_value();
    });
}

// Reports the stray ones and leaves the others.
void RemoveStrays(const DiscSet& set, std::vector<FirstMarker>& markers, Findings& out) {
    std::erase_if(markers, [&](const FirstMarker& marker) {
        if (!IsStray(set, marker.set)) return false;
        out.Add("outer-marker-stray", marker.File());
        return true;
    });
}

void CheckFirstMarkers(const std::vector<FirstMarker>& markers, Findings& out) {
    if (markers.size() > 1) out.Add("outer-markers-two", markers[1].File());
    const OuterMarker& first = markers.front().marker;
    if (const std::string name = MarkerName(first.number); first.fileName != name)
        out.Add("outer-marker-irregular", first.File(), {std::to_string(first.number), name});
}

}  // namespace

bool CheckOuterVolumes(const DiscSet& set, Findings& out) {
    std::vector<FirstMarker> markers = NearestMarkers(set, set.first);
    if (markers.empty()) return ReportOverlooked(set, out) || ReportUnmarked(set, out);
    while (!markers.empty()) {
        const Path folder = markers.front().marker.folder;
        RemoveStrays(set, markers, out);
        if (!markers.empty()) {
            CheckFirstMarkers(markers, out);
            OuterVolumes(set, markers.front(), out).Check();
            return true;
        }
        markers = NearestMarkers(set, folder);  // what the strays hide
    }
    return ReportUnmarked(set, out);
}

}  // namespace launcher::mediatool
