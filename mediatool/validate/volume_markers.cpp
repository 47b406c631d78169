#include "mediatool/validate/volume_markers.h"

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kExtensionLength = sizeof kVolumeMarkerSuffix - 1;

// From 1 to 99.
bool IsOuterNumber(const std::string& name) {
    return IsNumber(name) && name[0] != '0' && name.size() <= 2;
}

std::vector<Path> FoldersWithNumbers(const Path& folder) {
    std::vector<Path> folders;
    for (const Entry& entry : EntriesOf(folder))
        if (entry.isFolder && IsOuterNumber(entry.name))
            folders.push_back(Join(folder, entry.name));
    return folders;
}

}  // namespace

Path ParentOfVolumes(const Path& volumeOne) {
    const Path parent = Parent(volumeOne);
    return IsEmpty(parent) ? volumeOne : parent;
}

std::vector<Path> NumberedMarkers(const Path& folder) {
    std::vector<Path> markers;
    for (const Entry& entry : EntriesOf(folder)) {
        const Path path = Join(folder, entry.name);
        if (!entry.isFolder && NumberIn(path) > 0) markers.push_back(path);
    }
    return markers;
}

VolumeNumber NumberIn(const Path& marker) {
    const std::string name = InLowerCase(FileName(marker));
    if (!name.ends_with(kVolumeMarkerSuffix)) return 0;
    const std::string stem = name.substr(0, name.size() - kExtensionLength);
    return IsNumber(stem) && stem[0] != '0' ? ToIntOr(stem, 0) : 0;
}

std::multimap<VolumeNumber, MeantMarker> MarkersMeantIn(const Path& folder) {
    std::multimap<VolumeNumber, MeantMarker> markers;
    for (const Entry& entry : EntriesOf(folder)) {
        std::string stem = InLowerCase(entry.name);
        if (!stem.ends_with(kVolumeMarkerSuffix)) continue;
        while (stem.ends_with(kVolumeMarkerSuffix))
            stem.resize(stem.size() - kExtensionLength);
        if (IsNumber(stem))
            markers.insert({ToIntOr(stem, 0), {Join(folder, entry.name), stem[0] == '0'}});
    }
    return markers;
}

std::map<VolumeNumber, Path> MisnamedFolders(const Path& parent, const std::string& setId) {
    std::map<VolumeNumber, Path> folders;
    for (const Entry& entry : EntriesOf(parent)) {
        const Path folder = Join(parent, entry.name);
        if (!entry.isFolder || Look(Join(folder, entry.name + kVolumeMarkerSuffix))) continue;
        for (const Path& marker : NumberedMarkers(folder))
            if (ReadMtbDir(marker.Text()) == setId) folders.insert({NumberIn(marker), folder});
    }
    return folders;
}

std::vector<VolumeInOuter> VolumesInOuter(const Path& volumeOne, const std::string& setId) {
    std::vector<VolumeInOuter> found;
    for (Path first = Parent(volumeOne); !IsEmpty(Parent(first)); first = Parent(first)) {
        const std::string relative = RelativePath(Parent(volumeOne), first).Text();
        for (const Path& outer : FoldersWithNumbers(Parent(first))) {
            if (SameName(outer, first)) continue;
            for (const Path& volume : FoldersWithNumbers(Join(outer, relative))) {
                const int number = ToIntOr(FileName(volume), 0);
                const Path marker = MarkerIn(volume, number);
                if (number > 1 && ReadMtbDir(marker.Text()) == setId)
                    found.push_back({first, ToIntOr(FileName(outer), 0), number, marker});
            }
        }
    }
    return found;
}

}  // namespace launcher::mediatool
