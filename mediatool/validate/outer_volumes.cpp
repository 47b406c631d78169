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

// By all files of the nearest ancestor that has any that the launcher takes for the marker of an
// outer volume, that of its search first.
std::vector<OuterSet> NearestSets(const DiscSet& set, const Path& below) {
    std::vector<OuterSet> sets;
    for (Path folder = Parent(below); sets.empty() && !IsEmpty(folder); folder = Parent(folder))
        for (const Entry& entry : EntriesOf(folder))
            if (!entry.isFolder && OuterMarkerNumber(entry.name) > 0)
                sets.push_back(OuterSetOf(set.first, folder, entry.name));
    std::stable_partition(sets.begin(), sets.end(), [&set](const OuterSet& each) {
        return set.ids.WasAskedFor(each.MarkerFile());
    });
    return sets;
}

// The outer volume of volume 1 has no marker, but another one holds a volume of the set.
bool ReportUnmarked(const DiscSet& set, Findings& out) {
    for (const VolumeInOuter& volume : VolumesInOuter(set.first, set.id, set.ids)) {
        const VolumeNumber number = volume.outer - volume.number + 1;
        const Path missing = MarkerIn(volume.first, number);
        if (OuterMarkerNumber(FileName(missing)) <= 0) continue;
        const Path other = Join(Parent(volume.first), std::to_string(volume.outer));
        const std::string& id = set.ids.In(MarkerIn(other, volume.outer));
        out.Add("outer-marker-missing", missing,
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
            if (lower != stem + kVolumeMarkerSuffix || !IsNumber(stem) || set.ids.In(file).empty())
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
    OuterVolumes(const DiscSet& inner, const OuterSet& set, Findings& out)
        : inner_(inner), out_(out), set_(set) {}

    void Check() {
        CheckMarkerText(set_.MarkerFile(), set_.id, out_);
        if (set_.id.empty()) return;
        const Path parent = Parent(set_.folder);
        if (IsEmpty(parent)) {
            out_.Add("outer-volume-at-drive-root", set_.MarkerFile());
            return;
        }
        for (const VolumeNumber number : NumberedFolders(parent, set_.first + 1, Last()))
            CheckVolumeIn(number);
        if (missing_.Total() > 0) ReportMissing();
        if (set_.id == inner_.id) out_.Add("outer-id-same", set_.MarkerFile());
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
            action += "; or delete " + set_.marker + ", if the disc set is in no outer volume";
        out_.Add("outer-volume-missing", OuterVolumeFolder(set_, missing_.First()),
                 {missing_.Sentence("outer volume"), action});
    }

    const DiscSet& inner_;
    Findings& out_;
    const OuterSet& set_;
    MissingVolumes missing_{set_.first + 1, Last()};
};

// A file that only looks like a marker: it has no identifier of an outer set, and no other volume
// of such a set is beside its folder.
bool IsStray(const DiscSet& set, const OuterSet& outer) {
    if (!outer.id.empty() && outer.id != set.id) return false;
    const Path parent = Parent(outer.folder);
    const auto others = NumberedFolders(parent, outer.first + 1, outer.first + set.count - 1);
    return std::ranges::none_of(others, [&](VolumeNumber number) {
        return Look(MarkerIn(OuterVolumeFolder(outer, number), number)).has_value();
    });
}

// Reports the stray ones and leaves the others.
void RemoveStrays(const DiscSet& set, std::vector<OuterSet>& sets, Findings& out) {
    std::erase_if(sets, [&](const OuterSet& outer) {
        if (!IsStray(set, outer)) return false;
        out.Add("outer-marker-stray", outer.MarkerFile());
        return true;
    });
}

void CheckFirstMarkers(const std::vector<OuterSet>& sets, Findings& out) {
    if (sets.size() > 1) out.Add("outer-markers-two", sets[1].MarkerFile());
    const OuterSet& set = sets.front();
    if (const std::string name = MarkerName(set.first); set.marker != name)
        out.Add("outer-marker-irregular", set.MarkerFile(), {std::to_string(set.first), name});
}

}  // namespace

bool CheckOuterVolumes(const DiscSet& set, Findings& out) {
    std::vector<OuterSet> sets = NearestSets(set, set.first);
    if (sets.empty()) return ReportOverlooked(set, out) || ReportUnmarked(set, out);
    while (!sets.empty()) {
        const Path folder = sets.front().folder;
        RemoveStrays(set, sets, out);
        if (!sets.empty()) {
            CheckFirstMarkers(sets, out);
            OuterVolumes(set, sets.front(), out).Check();
            return true;
        }
        sets = NearestSets(set, folder);  // what the strays hide
    }
    return ReportUnmarked(set, out);
}

}  // namespace launcher::mediatool
