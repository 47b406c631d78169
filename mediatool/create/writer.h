#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "fs/owners.h"
#include "fs/path.h"
#include "mediatool/create/plan.h"

namespace launcher::mediatool {

class NewFile;

// Writes a set whose first volume says that it is unfinished until Finish(): each file under a
// temporary name, which it loses when it is whole. Takes back the files and folders that it made,
// unless all went well. All functions but TakeBack() throw Refused.
class Writer {
  public:
    // Marks the set, with the folder of its first volume, before anything else is changed, and
    // keeps others from writing it.
    explicit Writer(const Plan& plan);
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { TakeBack(); }

    void MakeFolder(const Path& folder);
    void Write(const PlannedFile& file, const std::string& content);
    // `take` sees the bytes and may throw.
    void Copy(const PlannedFile& file, const std::function<void(std::string_view)>& take);

    void Finish();
    // What stays all the same, as sentences with a blank in front; nothing when nothing does. A
    // file that was overwritten stays so. With any file that stays, the mark does too.
    std::string TakeBack();

  private:
    void Mark();
    void GiveName(NewFile& whole, const PlannedFile& file);

    std::vector<Path> made_;
    std::size_t replaced_ = 0;
    Path mark_;
    FileHandle held_;  // the mark
    bool wasMarked_;
    std::string lastFolder_;  // that is there for certain
};

// Opens the mark of a set, which is there already or is made. Nobody else can hold it meanwhile.
// Throws Refused when another mediatool does.
FileHandle HoldMark(const Path& mark, bool isThere);

}  // namespace launcher::mediatool
