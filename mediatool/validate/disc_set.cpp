#include "mediatool/validate/disc_set.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kMostNamed = 5;  // of the volumes that are missing

void CompareIdentifiers(const std::string& id, const DiscSet& set, const Path& marker,
                        Findings& out) {
    // Compared as Windows compares names, which end at a zero byte; and bytes that are no UTF-8
    // would all be the same character.
    const bool areNames =
        (id + set.id).find('\0') == std::string::npos && IsUtf8(id) && IsUtf8(set.id);
    if (areNames && Composed(id) == Composed(set.id)) {
        out.Add("volume-id-letters-differ", marker,
                {Quoted(SpeltOut(id)), Quoted(SpeltOut(set.id))});
        return;
    }
    out.AddFirst({{areNames && SameName(id, set.id), "volume-id-case-differs"},
                  {areNames && SameName(Trimmed(id), Trimmed(set.id)), "volume-id-blanks-differ"},
                  {true, "volume-id-differs"}},
                 marker, {Quoted(Harmless(id, "")), Quoted(Harmless(set.id, ""))});
}

// The marker of another volume of the set in a folder that should have this one's.
std::vector<Path> OtherMarkers(const DiscSet& set, const Path& folder) {
    std::vector<Path> markers = NumberedMarkers(folder);
    std::erase_if(markers, [&set](const Path& file) { return !set.Has(file); });
    return markers;
}

// A file that belongs to the volume, or a folder with anything in it. A list of checksums is about
// the others.
bool IsContent(const Path& folder, const Entry& entry) {
    const Path path = Join(folder, entry.name);
    if (entry.isFolder) return !EntriesOf(path).empty();
    return NumberIn(path) == 0 && !IsLeftover(entry.name) && !SameName(entry.name, kChecksumsName);
}

void CheckContent(const std::string& number, const Path& folder, Findings& out) {
    const auto entries = List(folder);
    const auto isContent = [&](const Entry& entry) { return IsContent(folder, entry); };
    out.AddFirst({{!entries, "folder-unreadable"},
                  {entries && std::ranges::none_of(*entries, isContent), "volume-empty"}},
                 folder, {number});
}

// The folder has the marker of another volume, whose own folder may have none.
void ReportOther(const DiscSet& set, VolumeNumber number, const PlaceOf& placeOf, const Path& other,
                 Findings& out) {
    const VolumeNumber own = NumberIn(other);
    const Path place = own == 1 ? set.first : placeOf(own);
    const bool isAlone = own <= set.count && !set.Has(MarkerIn(place, own));
    out.AddFirst({{isAlone, "volume-marker-wrong-number/in-its-folder"},
                  {true, "volume-marker-wrong-number"}},
                 other,
                 {MarkerName(number), std::to_string(number), FileName(other), place.Text()});
}

}  // namespace

bool CheckDepth(const std::string& volume, const Path& folder, const std::string& name,
                const std::string& id, const MarkerIds& ids, Findings& out) {
    for (const Entry& entry : EntriesOf(folder)) {
        const Path inner = Join(folder, entry.name);
        if (!entry.isFolder || ids.In(Join(inner, name)) != id) continue;
        out.Add("volume-too-deep", inner, {volume, folder.Text()});
        return true;
    }
    return false;
}

void CheckVolume(const DiscSet& set, VolumeNumber number, const PlaceOf& placeOf, Findings& out) {
    const Path folder = placeOf(number);
    const Path marker = MarkerIn(folder, number);
    const std::string name = MarkerName(number);
    const std::string k = std::to_string(number);
    if (Look(marker)) {
        const std::string& id = set.ids.In(marker);
        CheckMarkerText(marker, id, out);
        if (!id.empty() && id != set.id) CompareIdentifiers(id, set, marker, out);
        if (!SameName(folder, set.first)) CheckContent(k, folder, out);
        return;
    }
    const auto meant = MarkersMeantIn(folder);
    if (const auto misnamed = meant.find(number); misnamed != meant.end()) {
        const auto& [file, hasZeros] = misnamed->second;
        out.AddFirst(
            {{hasZeros, "volume-marker-leading-zeros"}, {true, "volume-marker-double-extension"}},
            file, {name});
        return;
    }
    const std::vector<Path> others = OtherMarkers(set, folder);
    if (number > 1 && !others.empty())
        ReportOther(set, number, placeOf, others.front(), out);
    else if (set.id.empty() || !CheckDepth("Volume " + k, folder, name, set.id, set.ids, out))
        out.Add("volume-marker-missing", marker, {k, set.id.empty() ? "identifier" : set.id});
}

bool MissingVolumes::Contains(VolumeNumber number) const {
    return number >= first_ && number <= last_ && !others_.contains(number);
}

VolumeNumber MissingVolumes::Total() const {
    return last_ - first_ + 1 - static_cast<VolumeNumber>(others_.size());
}

std::vector<VolumeNumber> MissingVolumes::Named() const {
    std::vector<VolumeNumber> named;
    for (VolumeNumber number = first_; number <= last_ && named.size() < kMostNamed; ++number)
        if (!others_.contains(number)) named.push_back(number);
    return named;
}

std::string MissingVolumes::Numbers() const {
    std::vector<std::string> named;
    for (const VolumeNumber number : Named())
        named.push_back(std::to_string(number));
    const bool areAll = static_cast<std::size_t>(Total()) == named.size();
    return areAll ? Listed(named, ", ", " and ") : Listed(named, ", ", ", ") + " and so on";
}

std::string MissingVolumes::Sentence(std::string what) const {
    if (Total() > 1)
        return std::to_string(Total()) + " " + what + "s are missing: " + Numbers() + ".";
    what[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(what[0])));
    return what + " " + Numbers() + " is missing.";
}

}  // namespace launcher::mediatool
