#include "mediatool/validate/volume_markers.h"

#include <cctype>
#include <optional>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kExtensionLength = 4;  // ".txt"
constexpr std::size_t kMostNamed = 5;        // of the volumes that are missing

// The number in a name that was meant to be "<number>.txt", or 0; and whether zeros are in front.
long long NumberMeant(const std::string& name, bool& zeros) {
    std::string stem = InLowerCase(name);
    if (!stem.ends_with(".txt")) return 0;
    while (stem.ends_with(".txt"))
        stem.resize(stem.size() - kExtensionLength);
    if (!IsNumber(stem)) return 0;
    zeros = stem[0] == '0';
    return ToIntOr(stem, 0);
}

// A file of another name that was meant to be "<number>.txt".
std::optional<Path> Misnamed(const Path& folder, int number, bool& zeros) {
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>()))
        if (!entry.isFolder && NumberMeant(entry.name, zeros) == number)
            return Join(folder, entry.name);
    return std::nullopt;
}

// A marker of another volume in a folder that should have this one's.
std::optional<Path> OtherNumber(const VolumePlace& place) {
    for (const Path& marker : NumberedMarkers(place.folder))
        if (NumberIn(marker) != place.number && ReadMtbDir(marker.Text()) == place.mediaId)
            return marker;
    return std::nullopt;
}

// From 1 to 99.
bool IsOuterNumber(const std::string& name) {
    return IsNumber(name) && name[0] != '0' && name.size() <= 2;
}

std::vector<Path> FoldersWithNumbers(const Path& folder) {
    std::vector<Path> folders;
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>()))
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

std::set<long long> TracesIn(const Path& folder) {
    std::set<long long> numbers;
    bool zeros = false;
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>()))
        if (const long long number = NumberMeant(entry.name, zeros); number > 0)
            numbers.insert(number);
    return numbers;
}

std::map<long long, Path> MisnamedFolders(const Path& parent, const std::string& mediaId) {
    std::map<long long, Path> folders;
    for (const Entry& entry : List(parent).value_or(std::vector<Entry>())) {
        const Path folder = Join(parent, entry.name);
        if (!entry.isFolder || Look(Join(folder, entry.name + ".txt"))) continue;
        for (const Path& marker : NumberedMarkers(folder))
            if (ReadMtbDir(marker.Text()) == mediaId) folders.insert({NumberIn(marker), folder});
    }
    return folders;
}

std::vector<VolumeInOuter> VolumesInOuter(const Path& volumeOne, const std::string& mediaId) {
    std::vector<VolumeInOuter> found;
    for (Path first = Parent(volumeOne); !IsEmpty(Parent(first)); first = Parent(first)) {
        const std::string relative = RelativePath(Parent(volumeOne), first).Text();
        for (const Path& outer : FoldersWithNumbers(Parent(first))) {
            if (SameName(outer.Text(), first.Text())) continue;
            for (const Path& volume : FoldersWithNumbers(Join(outer, relative))) {
                const int number = ToIntOr(FileName(volume), 0);
                const Path marker = MarkerIn(volume, number);
                if (number > 1 && ReadMtbDir(marker.Text()) == mediaId)
                    found.push_back({first, ToIntOr(FileName(outer), 0), number, marker});
            }
        }
    }
    return found;
}

bool ExplainMissingMarker(const VolumePlace& place, Findings& out) {
    const std::string name = MarkerName(place.number);
    const Path marker = Join(place.folder, name);
    const std::string notThere = "For the launcher, the volume is not there.";
    const std::string rename = "Rename it to " + name + ".";
    // In the folder of volume 1 the others' markers are at home.
    const bool inVolumeOne = place.number == 1 || Look(Join(place.folder, MarkerName(1)));
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
    } else if (place.number != 1 && inVolumeOne) {
        return false;
    } else if (const auto other = OtherNumber(place); other && place.number != 1) {
        out.Error("volume-marker-wrong-number", other->Text(),
                  "The folder of volume " + std::to_string(place.number) + " has the marker of " +
                      FileName(*other) + ".",
                  notThere, rename);
    } else {
        out.Error("volume-marker-missing", marker.Text(),
                  "Volume " + std::to_string(place.number) + " has no marker.", notThere,
                  "Write the file with the line MTBDIR=" +
                      (place.mediaId.empty() ? "identifier" : place.mediaId) + ".");
    }
    return true;
}

void MissingVolumes::Add(long long number, const Path& file) {
    if (total_ == 0) firstFile_ = file;
    if (first_.size() < kMostNamed) first_.push_back(number);
    ++total_;
}

void MissingVolumes::AddUnnamed(long long count, const Path& folder) {
    if (total_ == 0) firstFile_ = folder;
    total_ += count;
}

std::string MissingVolumes::Numbers() const {
    std::string text;
    const bool areAll = static_cast<std::size_t>(total_) == first_.size();
    for (std::size_t i = 0; i < first_.size(); ++i) {
        if (i > 0) text += areAll && i + 1 == first_.size() ? " and " : ", ";
        text += std::to_string(first_[i]);
    }
    return areAll ? text : text + " and so on";
}

std::string MissingVolumes::Sentence() const {
    if (first_.empty()) return std::to_string(total_) + " " + what_ + "s are missing.";
    if (total_ > 1)
        return std::to_string(total_) + " " + what_ + "s are missing: " + Numbers() + ".";
    std::string text = what_ + " " + Numbers() + " is missing.";
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

void MissingVolumes::Report(Findings& out) const {
    if (total_ == 0) return;
    out.Error("volume-missing", firstFile_.Text(), Sentence(),
              "The launcher finds some volumes and not others, and copies the installer to the "
              "temporary folder.",
              total_ == 1 ? "Add the volume, or write the right number into inst\\volumes.txt."
                          : "Add the volumes, or write the right number into inst\\volumes.txt.");
}

long long CountNumbered(const Path& folder, const std::string& suffix, long long first,
                        long long last) {
    long long count = 0;
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>())) {
        const std::string name = InLowerCase(entry.name);
        if (!name.ends_with(suffix)) continue;
        const std::string stem = name.substr(0, name.size() - suffix.size());
        if (!IsNumber(stem) || stem[0] == '0') continue;
        const long long number = ToIntOr(stem, 0);
        if (number >= first && number <= last) ++count;
    }
    return count;
}

void CompareIdentifiers(const Path& marker, const std::string& mediaId, Findings& out) {
    const std::string id = ReadMtbDir(marker.Text());
    if (id == mediaId) return;
    const std::string what =
        "The identifier is \"" + Visible(id) + "\"; volume 1 has \"" + Visible(mediaId) + "\".";
    const std::string why =
        "The launcher takes the volume for one of another media, and gives up on all of them.";
    const std::string action = "Give all volumes of one media the same identifier, to the letter.";
    // Compared as Windows compares names, which end at a zero byte.
    const bool hasZero = (id + mediaId).find('\0') != std::string::npos;
    if (!hasZero && SameName(id, mediaId))
        out.Error("volume-id-case-differs", marker.Text(), what, why, action);
    else if (!hasZero && SameName(Trimmed(id), Trimmed(mediaId)))
        out.Error("volume-id-blanks-differ", marker.Text(), what, why, action);
    else
        out.Error("volume-id-differs", marker.Text(), what, why, action);
}

}  // namespace launcher::mediatool
