#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fs/path.h"
#include "mediatool/create/create.h"

namespace launcher::mediatool {

struct TextFile {
    Path path;
    std::string content;
};

struct CopiedFile {
    Path source;
    Path destination;
    std::uint64_t size;
};

// All that is going to be written.
struct Plan {
    Path out;
    std::vector<Path> folders;    // of the volumes
    std::vector<TextFile> texts;  // the count file first
    std::vector<Path> emptyFolders;
    std::vector<CopiedFile> copies;
};

// Adds the content that the request names. Its markers give way to those that are written. Throws
// BadInput when it cannot be read, and when a file in it would be lost.
void PlanContent(const CreateRequest& request, Plan& plan);

// Throws BadInput for a file where a folder is to be, a folder where a file is to be, and a file
// to be overwritten that is one of those to be copied; Refused for one that cannot be overwritten.
void RefuseObstacles(const CreateRequest& request, const Plan& plan);

// Throws Refused when a file that is there, or comes with the content, would keep the launcher from
// finding the new set: the marker of another volume, or what the launcher takes for one.
void RefuseStaleMarkers(const CreateRequest& request, const Plan& plan);

}  // namespace launcher::mediatool
