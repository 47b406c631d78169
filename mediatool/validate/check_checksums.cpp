// The lists of checksums, at the roots of the volumes.

#include <algorithm>
#include <map>
#include <optional>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/media/unfinished.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

// A volume's marker has its number: it stays with the folder when the files change places.
bool IsMarkerName(const std::string& name) {
    return name.ends_with(kVolumeMarkerSuffix) &&
           IsNumber(name.substr(0, name.size() - (sizeof kVolumeMarkerSuffix - 1)));
}

// The only name of a marker among them; empty when there is none or more.
std::string MarkerAmong(const std::vector<std::string>& names) {
    std::string marker;
    for (const std::string& name : names) {
        if (!IsMarkerName(name)) continue;
        if (!marker.empty()) return {};
        marker = name;
    }
    return marker;
}

// Names in lower case, as Windows compares them, with the names as they are.
using Names = std::map<std::string, std::string>;

struct Volume {
    Path folder;
    bool hasList = false;
    std::vector<ChecksumList::File> list{};
    SizesByName files{};
    Names names{};  // of the files

    Path ListPath() const { return Join(folder, kChecksumsName); }
    Path PathOf(const std::string& name) const { return Join(folder, name); }

    bool HasFile(const std::string& name) const {
        return names.contains(InLowerCase(name)) || IsFile(PathOf(name));
    }
    std::string ListedMarker() const {
        std::vector<std::string> listed;
        for (const ChecksumList::File& file : list)
            listed.push_back(file.name);
        return MarkerAmong(listed);
    }
    std::string Marker() const {
        std::vector<std::string> all;
        for (const auto& [name, size] : files)
            all.push_back(name);
        return MarkerAmong(all);
    }
};

// The files of one kind of mistake in a volume. A volume that is damaged as a whole is one mistake,
// not a thousand.
class Mistakes {
  public:
    Mistakes(FindingKind kind, FindingKind more) : kind_(kind), more_(more) {}

    void Add(const std::string& name) { names_.push_back(name); }
    void Tell(const Volume& volume, Findings& out) const {
        // One more is told as well as that there is one more.
        const bool areAll = names_.size() <= kFindingsOfOneKind + 1;
        const std::size_t told = areAll ? names_.size() : kFindingsOfOneKind;
        for (std::size_t i = 0; i < told; ++i)
            out.Add(kind_, volume.PathOf(names_[i]));
        if (!areAll) out.Add(more_, volume.ListPath(), {std::to_string(names_.size() - told)});
    }
    bool IsEmpty() const { return names_.empty(); }

  private:
    FindingKind kind_;
    FindingKind more_;
    std::vector<std::string> names_;
};

class Verification {
  public:
    Verification(const Subject& subject, const TellAmounts& progress, Findings& out)
        : inst_(subject.Inst()), progress_(progress), out_(out) {
        const std::vector<Path> folders = FoldersOf(subject.set.given, subject.view.folders);
        for (const Path& folder : folders)
            volumes_.push_back({.folder = folder, .hasList = IsFile(Join(folder, kChecksumsName))});
        if (std::ranges::none_of(volumes_, &Volume::hasList)) return;
        for (Volume& volume : volumes_)
            Read(volume, folders);
    }

    Amounts Verify() {
        const bool any = std::ranges::any_of(volumes_, &Volume::hasList);
        for (const Volume& volume : volumes_) {
            if (volume.hasList)
                Verify(volume);
            else if (any)
                out_.Add("checksum-list-missing", volume.folder);
        }
        return read_;
    }

  private:
    void Read(Volume& volume, const std::vector<Path>& folders) {
        const auto unlisted = [this](const Path& folder) {
            // That has its own check.
            if (!IsWithin(folder, inst_)) out_.Add("folder-unreadable", folder);
        };
        volume.files = FilesOfVolume(volume.folder, folders, unlisted);
        for (const auto& [name, size] : volume.files)
            volume.names.insert({InLowerCase(name), name});
        if (!volume.hasList) return;
        std::string text;
        try {
            ReadWhole(
                volume.ListPath(), [&text](std::string_view bytes) { text += bytes; }, "read");
        } catch (const Refused&) {
            out_.Add("checksum-list-unreadable", volume.ListPath());
            return;
        }
        const ChecksumList list = ParseChecksums(text);
        const bool isEmpty = list.files.empty() && !volume.files.empty();
        out_.AddFirst({{list.badLine > 0, "checksum-list-malformed"},
                       {isEmpty, "checksum-list-malformed/empty"}},
                      volume.ListPath(), {std::to_string(list.badLine)});
        volume.list = list.files;
        for (const ChecksumList::File& file : list.files) {
            const auto known = volume.names.find(InLowerCase(file.name));
            if (known == volume.names.end()) continue;
            ++read_.allFiles;
            read_.allBytes += volume.files.at(known->second);
        }
    }

    void Verify(const Volume& volume) {
        if (volume.list.empty()) return;
        Mistakes differing("checksum-differs", "checksum-differs/more");
        Mistakes missing("checksum-file-missing", "checksum-file-missing/more");
        Mistakes unlisted("checksum-file-unlisted", "checksum-file-unlisted/more");
        Mistakes unreadable("checksum-file-unreadable", "checksum-file-unreadable/more");
        Names others = volume.names;
        for (const ChecksumList::File& file : volume.list) {
            others.erase(InLowerCase(file.name));
            if (!volume.HasFile(file.name))
                missing.Add(file.name);
            else if (const auto hash = HashOf(volume.PathOf(file.name)); !hash)
                unreadable.Add(file.name);
            else if (*hash != file.hash)
                differing.Add(file.name);
        }
        for (const auto& [lower, name] : others)
            unlisted.Add(name);
        unreadable.Tell(volume, out_);
        if (!(differing.IsEmpty() && missing.IsEmpty()) && IsOfAnother(volume)) return;
        for (const Mistakes* mistakes : {&differing, &missing, &unlisted})
            mistakes->Tell(volume, out_);
    }

    // Whether its files, or its list, are those of another volume.
    bool IsOfAnother(const Volume& volume) {
        const std::string listed = volume.ListedMarker();
        const std::string marker = volume.Marker();
        if (!listed.empty() && !marker.empty() && listed != marker && Fits(volume.list, volume)) {
            out_.Add("checksum-list-wrong-volume/marker", volume.ListPath(), {listed, marker});
            return true;
        }
        for (const Volume& other : volumes_) {
            if (&other == &volume || !Fits(volume.list, other)) continue;
            out_.Add("checksum-list-wrong-volume", volume.ListPath(), {other.folder.Text()});
            return true;
        }
        return false;
    }

    // But for the markers. A list of nothing else fits no folder.
    bool Fits(const std::vector<ChecksumList::File>& list, const Volume& volume) {
        std::vector<ChecksumList::File> files;
        std::ranges::copy_if(list, std::back_inserter(files), [](const ChecksumList::File& file) {
            return !IsMarkerName(file.name);
        });
        return !files.empty() && std::ranges::all_of(files, [&](const auto& file) {
            return volume.HasFile(file.name);
        }) && std::ranges::all_of(files, [&](const ChecksumList::File& file) {
            return HashOf(volume.PathOf(file.name)) == file.hash;
        });
    }

    // Nothing for a file that cannot be read to its end.
    std::optional<std::string> HashOf(const Path& file) {
        const auto [known, isNew] = hashes_.insert({InLowerCase(file.Text()), std::nullopt});
        if (!isNew) return known->second;
        try {
            known->second = ChecksumOf(file, [this](std::uint64_t bytes) {
                read_.bytes += bytes;
                progress_(read_);
            });
            ++read_.files;
        } catch (const Refused&) {
        }
        return known->second;
    }

    Path inst_;
    const TellAmounts& progress_;
    Findings& out_;
    std::vector<Volume> volumes_;
    std::map<std::string, std::optional<std::string>> hashes_;  // by path in lower case
    Amounts read_ = {.what = "Checksums"};
};

}  // namespace

Amounts CheckChecksums(const Subject& subject, const TellAmounts& progress, Findings& out) {
    if (Look(Join(subject.Media(), kUnfinishedMark))) return {};
    return Verification(subject, progress, out).Verify();
}

}  // namespace launcher::mediatool
