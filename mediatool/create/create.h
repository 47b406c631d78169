#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "mediatool/base/amounts.h"
#include "mediatool/base/json.h"
#include "mediatool/media/launcher_view.h"

namespace launcher::mediatool {

struct CreateRequest {
    std::string id;
    Layout layout = Layout::OneFolder;
    int volumes = 0;
    std::vector<std::string> from;  // the content of each volume, volume 1 first; may be empty
    std::string out;
    bool force = false;      // write over what is there
    bool checksums = false;  // a list of them in each volume
    bool isDry = false;      // change nothing

    // Of the outer layout only.
    std::string outerId;          // empty for the media's, with "-outer" at its end
    int firstOuter = 1;           // the number of the first outer volume
    std::string inner = "media";  // the folder in each outer volume that holds the inner one

    TellAmounts progress = [](const Amounts&) {};
};

// What becomes of a file: a new one, one in the place of another, or one that an unfinished run has
// written already and that stays as it is.
enum class Fate { New, Replaced, Kept };

struct CreatedFile {
    Fate fate;
    std::string path;
    std::string source;  // empty for one that create itself writes
    std::uint64_t size;  // bytes
};

struct Creation {
    Layout layout;
    std::vector<std::string> folders;    // of the volumes, volume 1 first
    std::vector<std::string> written;    // count file and markers
    std::vector<std::string> checksums;  // the lists
    std::string outerId;                 // empty but for the outer layout
    std::size_t copiedFiles = 0;
    std::uint64_t copiedBytes = 0;
    std::size_t keptFiles = 0;
    std::vector<CreatedFile> files;  // all of them, in the order of writing
};

// Writes the count file and the markers of a split media below `out`, and copies its content there
// when it is given; of a dry request, says what would be written. Throws BadInput, before anything
// is written, for a request that makes no sense, and Refused when a file is in the way or cannot be
// written, and when somebody interrupts it; nothing new stays then. A set in which a file was
// written over before, or a new one cannot be taken back, stays marked as unfinished, and the same
// request goes on from there. A marker of another set that would spoil this one is in the way even
// when files may be written over.
Creation Create(const CreateRequest& request);

// What it has done, and of a dry request what it would do, for people and for programs.
std::string TextOf(const Creation& creation);
Json JsonOf(const Creation& creation, const CreateRequest& request);
std::string TextOfDry(const Creation& creation);
Json JsonOfDry(const Creation& creation, const CreateRequest& request);

// What is left to do before it is a medium, as lines of text; empty when nothing is.
std::string NextStep(const Creation& creation);

}  // namespace launcher::mediatool
