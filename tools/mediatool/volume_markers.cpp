#include "tools/mediatool/volume_markers.h"

#include "media/volume_files.h"
#include "tools/mediatool/checks.h"
#include "tools/mediatool/files.h"
#include "tools/mediatool/marker_bytes.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kExtensionLength = 4;  // ".txt"

// A file of another name that was meant to be "<number>.txt".
std::optional<Path> Misnamed(const Path& folder, int number, bool& zeros) {
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>())) {
        const std::string name = InLowerCase(entry.name);
        if (entry.isFolder || !name.ends_with(".txt")) continue;
        const std::string stem = name.substr(0, name.size() - kExtensionLength);
        zeros = IsNumber(stem) && stem.size() < 10 && stem[0] == '0' && ToIntOr(stem, -1) == number;
        if (zeros || stem == MarkerName(number)) return Join(folder, entry.name);
    }
    return std::nullopt;
}

// A marker of another volume in a folder that should have this one's.
std::optional<Path> OtherNumber(const VolumePlace& place) {
    for (const Path& marker : NumberedMarkers(place.folder))
        if (NumberIn(marker) != place.number && ReadMtbDir(marker.Text()) == place.mediaId)
            return marker;
    return std::nullopt;
}

}  // namespace

std::vector<Path> NumberedMarkers(const Path& folder) {
    std::vector<Path> markers;
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>())) {
        const Path path = Join(folder, entry.name);
        if (!entry.isFolder && NumberIn(path) > 0) markers.push_back(path);
    }
    return markers;
}

long long NumberIn(const Path& marker) {
    const std::string name = InLowerCase(FileName(marker));
    if (!name.ends_with(".txt")) return 0;
    const std::string stem = name.substr(0, name.size() - kExtensionLength);
    return IsNumber(stem) && stem[0] != '0' ? ToIntOr(stem, 0) : 0;
}

bool HasTraceOfMarker(const Path& folder, int number) {
    bool zeros = false;
    return Look(Join(folder, MarkerName(number))) || Misnamed(folder, number, zeros);
}

std::optional<Path> FolderWithMarker(const Path& parent, int number, const std::string& mediaId) {
    for (const Entry& entry : List(parent).value_or(std::vector<Entry>())) {
        if (!entry.isFolder || entry.name == std::to_string(number)) continue;
        const Path folder = Join(parent, entry.name);
        if (ReadMtbDir(Join(folder, MarkerName(number)).Text()) == mediaId) return folder;
    }
    return std::nullopt;
}

void ExplainMissingMarker(const VolumePlace& place, Findings& out) {
    const std::string name = MarkerName(place.number);
    const Path marker = Join(place.folder, name);
    const std::string notThere = "For the launcher, the volume is not there.";
    const std::string rename = "Rename it to " + name + ".";
    bool zeros = false;
    if (Look(marker)) {
        CheckMarkerText(marker, out);
    } else if (const auto misnamed = Misnamed(place.folder, place.number, zeros)) {
        if (zeros)
            out.Error("volume-marker-leading-zeros", misnamed->Text(),
                      "The marker's name begins with a zero.", notThere, rename);
        else
            out.Error("volume-marker-double-extension", misnamed->Text(),
                      "The marker's name ends with .txt twice.", notThere, rename);
    } else if (const auto other = OtherNumber(place); other && place.number != 1) {
        // In the folder of volume 1 the others' markers are at home.
        if (Look(Join(place.folder, MarkerName(1)))) {
            ReportMissingVolume(place.folder, place.number, out);
            return;
        }
        out.Error("volume-marker-wrong-number", other->Text(),
                  "The folder of volume " + std::to_string(place.number) + " has the marker of " +
                      FileName(*other) + ".",
                  notThere, rename);
    } else if (place.number > 1 && Look(Join(place.folder, MarkerName(1)))) {
        ReportMissingVolume(place.folder, place.number, out);
    } else {
        out.Error("volume-marker-missing", marker.Text(),
                  "Volume " + std::to_string(place.number) + " has no marker.", notThere,
                  "Write the file with the line MTBDIR=" +
                      (place.mediaId.empty() ? "identifier" : place.mediaId) + ".");
    }
}

void ReportMissingVolume(const Path& folder, int number, Findings& out) {
    out.Error("volume-missing", Join(folder, MarkerName(number)).Text(),
              "Volume " + std::to_string(number) + " is missing.",
              "The launcher finds some volumes and not others, and copies the installer to the "
              "temporary folder.",
              "Add the volume, or write the right number into inst\\volumes.txt.");
}

void CompareIdentifiers(const Path& marker, const std::string& mediaId, Findings& out) {
    const std::string id = ReadMtbDir(marker.Text());
    if (id == mediaId) return;
    const std::string what = "The identifier is \"" + id + "\"; volume 1 has \"" + mediaId + "\".";
    const std::string why =
        "The launcher takes the volume for one of another media, and gives up on all of them.";
    const std::string action = "Give all volumes of one media the same identifier, to the letter.";
    if (SameName(id, mediaId))
        out.Error("volume-id-case-differs", marker.Text(), what, why, action);
    else if (SameName(Trimmed(id), Trimmed(mediaId)))
        out.Error("volume-id-blanks-differ", marker.Text(), what, why, action);
    else
        out.Error("volume-id-differs", marker.Text(), what, why, action);
}

}  // namespace launcher::mediatool
