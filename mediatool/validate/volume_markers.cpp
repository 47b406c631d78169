#include "mediatool/validate/volume_markers.h"

#include <algorithm>
#include <limits>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kExtensionLength = sizeof kVolumeMarkerSuffix - 1;

constexpr VolumeNumber kMostAskedFor = 100;  // in a folder that cannot be listed
constexpr VolumeNumber kAnyNumber = std::numeric_limits<int>::max();

// 0 for a name that is no number, or has a zero in front.
VolumeNumber NumberOf(const std::string& name) {
    return IsNumber(name) && name[0] != '0' ? ToIntOr(name, 0) : 0;
}

}  // namespace

MarkerIds::MarkerIds(const std::vector<AskedMarker>& asked) {
    for (const auto& [file, id] : asked)
        asked_.insert(ids_.insert({InLowerCase(file.Text()), id}).first->first);
}

const std::string& MarkerIds::In(const Path& marker) const {
    const auto [known, isNew] = ids_.try_emplace(InLowerCase(marker.Text()));
    if (isNew) known->second = ReadMtbDir(marker.Text());
    return known->second;
}

bool MarkerIds::WasAskedFor(const Path& marker) const {
    return asked_.contains(InLowerCase(marker.Text()));
}

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
    return NumberOf(name.substr(0, name.size() - kExtensionLength));
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

std::set<VolumeNumber> NumberedFolders(const Path& parent, VolumeNumber first, VolumeNumber last) {
    std::set<VolumeNumber> numbers;
    const auto entries = List(parent);
    if (!entries) {
        for (VolumeNumber k = first; k <= std::min(last, first + kMostAskedFor); ++k)
            if (IsFolder(Join(parent, std::to_string(k)))) numbers.insert(k);
        return numbers;
    }
    for (const Entry& entry : *entries) {
        const VolumeNumber number = entry.isFolder ? NumberOf(entry.name) : 0;
        if (number >= first && number <= last) numbers.insert(number);
    }
    return numbers;
}

std::vector<VolumeInOuter> VolumesInOuter(const Path& volumeOne, const std::string& setId,
                                          const MarkerIds& ids) {
    std::vector<VolumeInOuter> found;
    for (Path first = Parent(volumeOne); !IsEmpty(Parent(first)); first = Parent(first)) {
        const std::string relative = RelativePath(Parent(volumeOne), first).Text();
        for (const VolumeNumber outer : NumberedFolders(Parent(first), 1, kAnyNumber)) {
            const Path folder = Join(Parent(first), std::to_string(outer));
            if (SameName(folder, first)) continue;
            const Path parent = Join(folder, relative);
            if (!IsFolder(parent)) continue;
            for (const VolumeNumber number : NumberedFolders(parent, 2, kAnyNumber)) {
                const Path marker = MarkerIn(Join(parent, std::to_string(number)), number);
                if (ids.In(marker) == setId) found.push_back({first, outer, number, marker});
            }
        }
    }
    return found;
}

}  // namespace launcher::mediatool
