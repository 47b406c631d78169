#include "media/volumes.h"

#include <optional>

#include "fs/directory_enumerator.h"
#include "fs/environment.h"
#include "fs/path.h"
#include "fs/path_exists.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "media/folder_names.h"
#include "media/volume_files.h"
#include "media/volume_numbers.h"

namespace launcher {
namespace {

constexpr char kVolumesCountVar[] = "ZEPAdmInstVolumesCount";
constexpr char kMtbDirVar[] = "ZEPAdmInstMTBDIR";
constexpr char kFirstAmVolumeVar[] = "ZEPAdmInstFirstAMVolume";
constexpr char kFirstAmPathVar[] = "ZEPAdmInstFirstAMPath";
constexpr char kAmRelativePathVar[] = "ZEPAdmInstAMRelativePath";

// What one pass over volumes 2 to N found.
struct Pass {
    VolumeNumber found = 1;  // volume 1 is always there
    bool mismatch = false;   // a volume of another media was found
};

// A split media whose volume 1 was found and identified.
struct SplitMedia {
    const LaunchOptions& options;  // of which `mediaDir` is the folder of volume 1
    VolumeNumber count;
    std::string id;
};

// The marker of an outer volume, in an ancestor of volume 1's folder.
struct AmMarker {
    VolumeNumber number;
    std::string fileName;
    Path folder;
};

// The outer set that a media is nested in.
struct AmSet {
    VolumeNumber first;
    std::string id;
    Path folder;        // of its first volume
    Path relativePath;  // from that folder to the parent of volume 1's
};

std::string Decimal(VolumeNumber number) {
    return std::to_string(number);
}

constexpr char kMarkerSuffix[] = ".txt";

std::string ReadVolumeId(const Path& folder, VolumeNumber number) {
    return ReadMtbDir(Join(folder, Decimal(number) + kMarkerSuffix).Text());
}

void Trace(const LaunchOptions& options, const std::string& text) {
    TraceMessage(options, text, Severity::Plain);
}

void TraceWarning(const LaunchOptions& options, const std::string& text) {
    TraceMessage(options, text, Severity::Warning);
}

Pass SingleFolderPass(const SplitMedia& media) {
    const Path& folder = media.options.mediaDir;
    Pass pass;
    ForEachVolumeNumber(folder, 2, media.count, kMarkerSuffix, [&](VolumeNumber k) {
        const std::string id = ReadVolumeId(folder, k);
        if (id.empty()) return;
        if (id == media.id) {
            ++pass.found;
            return;
        }
        TraceWarning(media.options, "Volume " + Decimal(k) + " of " + id +
                                        " found in the directory of " + media.id);
        pass.mismatch = true;
    });
    return pass;
}

// Looks at one folder that should hold volume `k`.
void CheckVolumeFolder(const SplitMedia& media, VolumeNumber k, const Path& folder, Pass& pass,
                       std::vector<std::string>& volumes) {
    const std::string id = ReadVolumeId(folder, k);
    if (id.empty()) return;
    if (id == media.id) {
        ++pass.found;
        Trace(media.options, "Volume " + Decimal(k) + " found in: " + folder.Text());
        volumes.push_back(folder.Text());
        return;
    }
    TraceWarning(media.options, "Volume " + Decimal(k) + " of " + id + " found in " +
                                    folder.Text() + " instead of " + media.id);
    pass.mismatch = true;
}

Pass SiblingPass(const SplitMedia& media, std::vector<std::string>& volumes) {
    const Path parent = Parent(media.options.mediaDir);
    Pass pass;
    ForEachVolumeNumber(parent, 2, media.count, "", [&](VolumeNumber k) {
        CheckVolumeFolder(media, k, Join(parent, Decimal(k)), pass, volumes);
    });
    return pass;
}

// Looks for the outer volume `m`, and in it for volume `j`.
void CheckAmVolume(const SplitMedia& media, const AmSet& am, VolumeNumber m, Pass& pass,
                   std::vector<std::string>& volumes) {
    const Path outer = Join(Parent(am.folder), Decimal(m));
    const std::string id = ReadVolumeId(outer, m);
    if (id.empty()) return;
    if (id != am.id) {
        TraceWarning(media.options, "AM volume " + Decimal(m) + " of " + id + " found in " +
                                        outer.Text() + " instead of " + am.id);
        pass.mismatch = true;
        return;
    }
    Trace(media.options, "AM volume " + Decimal(m) + " found in: " + outer.Text());
    const VolumeNumber j = m - am.first + 1;
    const Path folder = Join(outer, {am.relativePath.Text(), Decimal(j)});
    CheckVolumeFolder(media, j, folder, pass, volumes);
}

Pass AmPass(const SplitMedia& media, const AmSet& am, std::vector<std::string>& volumes) {
    Pass pass;
    ForEachVolumeNumber(Parent(am.folder), am.first + 1, am.first + media.count - 1, "",
                        [&](VolumeNumber m) { CheckAmVolume(media, am, m, pass, volumes); });
    return pass;
}

// What a pass says about the whole media: the result of the search when it settles it, nothing when
// only volume 1 was found and the next layout must be tried.
std::optional<int> Conclude(const SplitMedia& media, const Pass& pass, int resultWhenComplete) {
    if (pass.mismatch) return 0;
    if (pass.found == media.count) return resultWhenComplete;
    if (pass.found == 1) return std::nullopt;
    TraceWarning(media.options,
                 "Missing volumes. Please make sure you copied everything correctly.");
    return 0;
}

// The number in the name of an outer volume's marker ("7.txt", "42.txt"); below 1 for any other
// name.
int AmMarkerNumber(const std::string& name) {
    const bool named = (name.size() == 5 || name.size() == 6) && name.ends_with(".txt");
    return named ? ToIntOr(name.substr(0, name.size() - 4), -1) : -1;
}

// The first marker of the nearest ancestor that holds one.
std::optional<AmMarker> FindAmMarker(const Path& mediaDir) {
    for (Path folder = Parent(mediaDir); !IsEmpty(folder); folder = Parent(folder)) {
        // A name of two quotes is nothing to a listing, which reads it again: it holds no marker.
        if (IsEmpty(Path(folder.Text()))) continue;
        const auto files = DirectoryEnumerator::Open(folder.Text(), DirectoryEnumerator::kFiles);
        for (; !files->AtEnd(); files->Next()) {
            const int number = AmMarkerNumber(files->Name());
            if (number > 0) return AmMarker{number, files->Name(), folder};
        }
    }
    return std::nullopt;
}

std::optional<AmSet> FindAmSet(const LaunchOptions& options) {
    const std::optional<AmMarker> marker = FindAmMarker(options.mediaDir);
    if (!marker) return std::nullopt;
    const std::string id = ReadMtbDir(Join(marker->folder, marker->fileName).Text());
    if (id.empty()) {
        TraceWarning(options, "Cannot open " + marker->fileName + " in " + marker->folder.Text());
        Trace(options, "Please make sure you copied and/or extracted everything properly.");
        return std::nullopt;
    }
    const AmSet am{marker->number, id, marker->folder,
                   RelativePath(Parent(options.mediaDir), marker->folder)};
    SetEnvVar(kMtbDirVar, am.id);
    Trace(options, "AM volume " + Decimal(am.first) + " found in: " + am.folder.Text());
    SetEnvVar(kFirstAmVolumeVar, Decimal(am.first));
    SetEnvVar(kFirstAmPathVar, am.folder.Text());
    SetEnvVar(kAmRelativePathVar, am.relativePath.Text());
    return am;
}

// The three layouts, one after the other: all volumes in one folder, in sibling folders, in
// numbered outer volumes.
int FindVolumes(const SplitMedia& media, std::vector<std::string>& volumes) {
    const LaunchOptions& options = media.options;
    if (const auto result = Conclude(media, SingleFolderPass(media), 1)) {
        if (*result == 1) {
            Trace(options, "All volumes found in: " + options.mediaDir.Text());
            SetEnvVar(kVolumesCountVar, "");
        }
        return *result;
    }
    const int all = static_cast<int>(media.count);
    Trace(options, "Volume 1 found in: " + options.mediaDir.Text());
    if (const auto result = Conclude(media, SiblingPass(media, volumes), all)) return *result;
    const std::optional<AmSet> am = FindAmSet(options);
    if (!am) return 0;
    return Conclude(media, AmPass(media, *am, volumes), all).value_or(0);
}

void ClearVolumeVariables() {
    for (const char* name :
         {kVolumesCountVar, kMtbDirVar, kFirstAmVolumeVar, kFirstAmPathVar, kAmRelativePathVar})
        SetEnvVar(name, "");
}

// The result of ResolveVolumes, once the variables are cleared.
int CountVolumes(const LaunchOptions& options, std::vector<std::string>& volumes) {
    const std::string countFile = Join(options.mediaDir, {kInstFolder, "volumes.txt"}).Text();
    // The misspelt name is part of the interface.
    if (!PathExists(countFile) || options.softMgt ||
        !GetEnvVar("ZEP_Online_Installation_Caf_Repositiory").empty())
        return 1;
    const std::optional<VolumeCount> count = ReadVolumeCount(countFile);
    if (!count) return 0;
    if (count->count < 2) return 1;
    // The line as it was read, whatever follows the number in it.
    TraceMessage(options, "This media is composed of " + count->line + " volumes.", Severity::Info);
    SetEnvVar(kVolumesCountVar, count->line);
    const std::string id = ReadVolumeId(options.mediaDir, 1);
    if (id.empty()) {
        TraceWarning(options, "1.txt not found or not accessible in: " + options.mediaDir.Text());
        Trace(options, "Please make sure you copied the whole volume.");
        return 0;
    }
    SetEnvVar(kMtbDirVar, id);
    return FindVolumes(SplitMedia{options, count->count, id}, volumes);
}

}  // namespace

int ResolveVolumes(LaunchOptions& options, std::vector<std::string>& volumes) {
    ClearVolumeVariables();
    const int result = CountVolumes(options, volumes);
    if (result != 0) options.skipTemporaryCopy = true;
    return result;
}

}  // namespace launcher
