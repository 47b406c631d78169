#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "mediatool/media/launcher_view.h"

namespace launcher::mediatool {

struct CreateRequest {
    std::string id;
    Layout layout = Layout::OneFolder;
    int volumes = 0;
    std::vector<std::string> from;  // the content of each volume, volume 1 first; may be empty
    std::string out;
    bool force = false;  // write over what is there

    // Of the outer layout only.
    std::string outerId;          // empty for the media's, with "-outer" at its end
    int firstOuter = 1;           // the number of the first outer volume
    std::string inner = "media";  // the folder in each outer volume that holds the inner one

    std::function<void(std::size_t files)> progress;
};

struct Creation {
    Layout layout;
    std::vector<std::string> folders;  // of the volumes, volume 1 first
    std::vector<std::string> written;  // count file and markers
    std::string outerId;               // empty but for the outer layout
    std::size_t copiedFiles = 0;
    std::uint64_t copiedBytes = 0;
};

// Writes the count file and the markers of a split media below `out`, and copies its content there
// when it is given. Throws BadInput, before anything is written, for a request that makes no sense,
// and Refused when a file is in the way or cannot be written; nothing new stays then. When a copy
// fails half-way, files that were written over before it stay so. A marker of another set that
// would spoil this one is in the way even when files may be written over.
Creation Create(const CreateRequest& request);

// What is left to do before it is a media, as lines of text; empty when nothing is.
std::string NextStep(const Creation& creation);

}  // namespace launcher::mediatool
