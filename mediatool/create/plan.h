#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "fs/path.h"
#include "mediatool/create/create.h"

namespace launcher::mediatool {

// A file that is going to be there.
struct PlannedFile {
    Path path;
    Path source{};          // that it is a copy of; empty for one that create itself writes
    std::string content{};  // of such a one
    std::uint64_t size = 0;
    std::uint64_t modified = 0;  // of the source, as its attributes
    std::uint32_t attributes = 0;
    Fate fate = Fate::New;
    bool isList = false;  // of checksums; its content is known at the end
    std::string hash{};   // once it is known

    bool IsCopy() const { return !IsEmpty(source); }
};

// All that is going to be written, in that order.
struct Plan {
    Path out;
    std::vector<Path> volumes;  // their folders
    std::vector<Path> emptyFolders;
    std::vector<PlannedFile> files;  // the content, the count file, the markers, the lists
    std::size_t copies = 0;          // how many of them are content
    bool resumes = false;            // an unfinished set is there

    const Path& VolumeOne() const { return volumes.front(); }
    std::span<const PlannedFile> Own() const { return std::span(files).subspan(copies); }
    std::vector<Path> FoldersOfVolumes() const;  // each once
    Path Mark() const;
};

// Throws BadInput for a request that makes no sense.
void CheckRequest(const CreateRequest& request);
// The folder to write into. Throws BadInput when there can be no such folder.
Path CheckedOut(const std::string& text);

// The identifier of the outer volumes; empty in other layouts.
std::string OuterId(const CreateRequest& request);

// What the request asks for, whatever is there already. Throws BadInput for content that cannot be
// read or would be lost, and Refused for lines of its markers that would be lost.
Plan PlanOf(const CreateRequest& request);

// Compares the plan with what is there: sets the fate of each file. Throws BadInput for a file
// where a folder is to be, a folder where a file is to be, and a file to be overwritten that is
// still to be copied; Refused for one that cannot be overwritten, or may not be.
void MeetWhatIsThere(const CreateRequest& request, Plan& plan);

// Throws Refused for a list of checksums that would not hold for the new set.
[[noreturn]] void RefuseOldList(const Path& list);

// Throws Refused when a file that is there, or comes with the content, would keep the launcher from
// finding the new set: the marker of another volume, or what the launcher takes for one.
void RefuseStaleMarkers(const CreateRequest& request, const Plan& plan);

}  // namespace launcher::mediatool
