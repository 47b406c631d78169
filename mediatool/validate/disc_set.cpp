#include "mediatool/validate/disc_set.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kMostNamed = 5;  // of the volumes that are missing

void CompareIdentifiers(const std::string& id, const DiscSet& set, const Path& marker,
                        Findings& out) {
    // Compared as Windows compares names, which end at a zero byte.
    const bool hasZero = (id + set.id).find('\0') != std::string::npos;
    out.AddFirst({{!hasZero && SameName(id, set.id), "volume-id-case-differs"},
                  {!hasZero && SameName(Trimmed(id), Trimmed(set.id)), "volume-id-blanks-differ"},
                  {true, "volume-id-differs"}},
                 marker, {Quoted(Visible(id)), Quoted(Visible(set.id))});
}

// The marker of another volume of the set in a folder that should have this one's.
std::vector<Path> OtherMarkers(const DiscSet& set, const Path& folder) {
    std::vector<Path> markers = NumberedMarkers(folder);
    std::erase_if(markers, [&](const Path& file) { return ReadMtbDir(file.Text()) != set.id; });
    return markers;
}

}  // namespace

bool CheckVolume(const DiscSet& set, VolumeNumber number, const Path& folder, Findings& out) {
    const Path marker = MarkerIn(folder, number);
    const std::string name = MarkerName(number);
    const std::string k = std::to_string(number);
    if (Look(marker)) {
        const std::string id = CheckMarkerText(marker, out);
        if (!id.empty() && id != set.id) CompareIdentifiers(id, set, marker, out);
        return true;
    }
    const auto meant = MarkersMeantIn(folder);
    if (const auto misnamed = meant.find(number); misnamed != meant.end()) {
        const auto& [file, hasZeros] = misnamed->second;
        out.AddFirst(
            {{hasZeros, "volume-marker-leading-zeros"}, {true, "volume-marker-double-extension"}},
            file, {name});
        return true;
    }
    // In the folder of volume 1 the others' markers are at home.
    if (number > 1 && SameName(folder, set.first)) return false;
    const std::vector<Path> others = OtherMarkers(set, folder);
    if (number > 1 && !others.empty())
        out.Add("volume-marker-wrong-number", others.front(), {name, k, FileName(others.front())});
    else
        out.Add("volume-marker-missing", marker, {k, set.id.empty() ? "identifier" : set.id});
    return true;
}

VolumeNumber MissingVolumes::Total() const {
    return last_ - first_ + 1 - static_cast<VolumeNumber>(others_.size());
}

VolumeNumber MissingVolumes::First() const {
    VolumeNumber number = first_;
    while (others_.contains(number))
        ++number;
    return number;
}

std::string MissingVolumes::Numbers() const {
    std::vector<std::string> named;
    for (VolumeNumber number = first_; number <= last_ && named.size() < kMostNamed; ++number)
        if (!others_.contains(number)) named.push_back(std::to_string(number));
    const bool areAll = static_cast<std::size_t>(Total()) == named.size();
    std::string text;
    for (std::size_t i = 0; i < named.size(); ++i) {
        if (i > 0) text += areAll && i + 1 == named.size() ? " and " : ", ";
        text += named[i];
    }
    return areAll ? text : text + " and so on";
}

std::string MissingVolumes::Sentence(std::string what) const {
    if (Total() > 1)
        return std::to_string(Total()) + " " + what + "s are missing: " + Numbers() + ".";
    what[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(what[0])));
    return what + " " + Numbers() + " is missing.";
}

}  // namespace launcher::mediatool
