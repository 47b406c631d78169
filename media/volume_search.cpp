#include "media/volume_search.h"

#include <utility>

#include "fs/directory_enumerator.h"
#include "fs/environment.h"
#include "fs/file_type.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "media/folder_names.h"
#include "media/volume_files.h"

namespace launcher {
namespace {

// What one pass over volumes 2 to N found.
struct Pass {
    VolumeNumber found = 1;            // volume 1 is always there
    bool mismatch = false;             // a volume of another medium was found
    std::vector<std::string> folders;  // of the volumes found, in layouts of several folders
};

// A split medium whose volume 1 was found and identified.
struct SplitMedia {
    const LaunchOptions& options;  // of which `mediaDir` is the folder of volume 1
    TellVariable tell;
    VolumeNumber count;
    std::string id;
};

std::string Decimal(VolumeNumber number) {
    return std::to_string(number);
}

std::string ReadVolumeId(const Path& folder, VolumeNumber number) {
    return ReadMtbDir(MarkerIn(folder, number).Text());
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
    ForEachVolumeNumber(folder, 2, media.count, kVolumeMarkerSuffix, [&](VolumeNumber k) {
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
void CheckVolumeFolder(const SplitMedia& media, VolumeNumber k, const Path& folder, Pass& pass) {
    const std::string id = ReadVolumeId(folder, k);
    if (id.empty()) return;
    if (id == media.id) {
        ++pass.found;
        Trace(media.options, "Volume " + Decimal(k) + " found in: " + folder.Text());
        pass.folders.push_back(folder.Text());
        return;
    }
    TraceWarning(media.options, "Volume " + Decimal(k) + " of " + id + " found in " +
                                    folder.Text() + " instead of " + media.id);
    pass.mismatch = true;
}

Pass SiblingPass(const SplitMedia& media) {
    const Path parent = Parent(media.options.mediaDir);
    Pass pass;
    ForEachVolumeNumber(parent, 2, media.count, "", [&](VolumeNumber k) {
        CheckVolumeFolder(media, k, Join(parent, Decimal(k)), pass);
    });
    return pass;
}

// Looks for the outer volume `m`, and in it for volume `j`.
void CheckOuterVolume(const SplitMedia& media, const OuterSet& set, VolumeNumber m, Pass& pass) {
    const Path outer = OuterVolumeFolder(set, m);
    const std::string id = ReadVolumeId(outer, m);
    if (id.empty()) return;
    if (id != set.id) {
        TraceWarning(media.options, "AM volume " + Decimal(m) + " of " + id + " found in " +
                                        outer.Text() + " instead of " + set.id);
        pass.mismatch = true;
        return;
    }
    Trace(media.options, "AM volume " + Decimal(m) + " found in: " + outer.Text());
    const VolumeNumber j = m - set.first + 1;
    CheckVolumeFolder(media, j, FolderInOuterVolume(set, j), pass);
}

Pass OuterPass(const SplitMedia& media, const OuterSet& set) {
    Pass pass;
    ForEachVolumeNumber(Parent(set.folder), set.first + 1, set.first + media.count - 1, "",
                        [&](VolumeNumber m) { CheckOuterVolume(media, set, m, pass); });
    return pass;
}

// By the first marker of the nearest ancestor that holds one.
std::optional<OuterSet> NearestOuterSet(const Path& mediaDir) {
    for (Path folder = Parent(mediaDir); !IsEmpty(folder); folder = Parent(folder)) {
        // A name of two quotes is nothing to a listing, which reads it again: it holds no marker.
        if (IsEmpty(Path(folder.Text()))) continue;
        const auto files = DirectoryEnumerator::Open(folder.Text(), DirectoryEnumerator::kFiles);
        for (; !files->AtEnd(); files->Next())
            if (OuterMarkerNumber(files->Name()) > 0)
                return OuterSetOf(mediaDir, folder, files->Name());
    }
    return std::nullopt;
}

std::optional<OuterSet> FindOuterSet(const SplitMedia& media) {
    const LaunchOptions& options = media.options;
    std::optional<OuterSet> set = NearestOuterSet(options.mediaDir);
    if (!set) return std::nullopt;
    if (set->id.empty()) {
        TraceWarning(options, "Cannot open " + set->marker + " in " + set->folder.Text());
        Trace(options, "Please make sure you copied and/or extracted everything properly.");
        return std::nullopt;
    }
    media.tell(kMtbDirVar, set->id);
    Trace(options, "AM volume " + Decimal(set->first) + " found in: " + set->folder.Text());
    media.tell(kFirstOuterVolumeVar, Decimal(set->first));
    media.tell(kFirstOuterPathVar, set->folder.Text());
    media.tell(kOuterRelativePathVar, set->relativePath.Text());
    return set;
}

// True when a pass settles the whole search: complete, as `layout`, or incomplete. False when only
// volume 1 was found and the next layout must be tried.
bool Settles(Pass pass, VolumeLayout layout, const SplitMedia& media, FoundVolumes& found) {
    found.folders = std::move(pass.folders);
    if (pass.found == media.count) {  // none is of another medium: those are not counted
        found.layout = layout;
        return true;
    }
    if (!pass.mismatch && pass.found > 1)
        TraceWarning(media.options,
                     "Missing volumes. Please make sure you copied everything correctly.");
    return pass.mismatch || pass.found > 1;
}

// The three layouts, one after the other.
void SearchLayouts(const SplitMedia& media, FoundVolumes& found) {
    const LaunchOptions& options = media.options;
    if (Settles(SingleFolderPass(media), VolumeLayout::OneFolder, media, found)) {
        if (found.layout != VolumeLayout::OneFolder) return;
        Trace(options, "All volumes found in: " + options.mediaDir.Text());
        // An ordinary media to the installer.
        media.tell(kVolumesCountVar, "");
        return;
    }
    Trace(options, "Volume 1 found in: " + options.mediaDir.Text());
    if (Settles(SiblingPass(media), VolumeLayout::Siblings, media, found)) return;
    found.outer = FindOuterSet(media);
    if (found.outer) Settles(OuterPass(media, *found.outer), VolumeLayout::Outer, media, found);
}

CopySkipped WhyNotSearched(const LaunchOptions& options) {
    if (options.softMgt) return CopySkipped::BySoftMgt;
    if (!GetEnvVar(kRepositoryVar).empty()) return CopySkipped::ByRepository;
    return CopySkipped::No;
}

}  // namespace

OuterSet OuterSetOf(const Path& mediaDir, const Path& folder, const std::string& marker) {
    return {OuterMarkerNumber(marker), marker, ReadMtbDir(Join(folder, marker).Text()), folder,
            RelativePath(Parent(mediaDir), folder)};
}

Path OuterVolumeFolder(const OuterSet& set, VolumeNumber outer) {
    return Join(Parent(set.folder), Decimal(outer));
}

Path FolderInOuterVolume(const OuterSet& set, VolumeNumber volume) {
    return Join(OuterVolumeFolder(set, set.first + volume - 1),
                {set.relativePath.Text(), Decimal(volume)});
}

FoundVolumes FindVolumes(const LaunchOptions& options, TellVariable tell) {
    FoundVolumes found;
    const std::string countFile = CountFileIn(options.mediaDir).Text();
    found.notSearched = WhyNotSearched(options);
    const bool isSearched = PathExists(countFile) && found.notSearched == CopySkipped::No;
    if (isSearched) found.count = ReadVolumeCount(countFile);
    if (!isSearched || (found.count && found.count->count < 2)) {
        found.layout = VolumeLayout::NotSplit;
        return found;
    }
    if (!found.count) return found;
    // The line as it was read, whatever follows the number in it.
    TraceMessage(options, "This media is composed of " + found.count->line + " volumes.",
                 Severity::Info);
    tell(kVolumesCountVar, found.count->line);
    found.id = ReadVolumeId(options.mediaDir, 1);
    if (found.id.empty()) {
        TraceWarning(options, "1.txt not found or not accessible in: " + options.mediaDir.Text());
        Trace(options, "Please make sure you copied the whole volume.");
        return found;
    }
    tell(kMtbDirVar, found.id);
    SearchLayouts(SplitMedia{options, tell, found.count->count, found.id}, found);
    return found;
}

}  // namespace launcher
