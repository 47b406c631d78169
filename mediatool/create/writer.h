#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "fs/path.h"
#include "mediatool/create/plan.h"

namespace launcher::mediatool {

class NewFile;

// Writes a set whose first volume says that it is unfinished until Finish(): each file under a
// temporary name, which it loses when it is whole. Takes back the files and folders that it made,
// unless all went well. All functions throw Refused.
class Writer {
  public:
    // Marks the set, with the folder of its first volume, before anything else is changed.
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
    // file that was overwritten stays so, and then the mark stays too.
    std::string TakeBack();

  private:
    void Mark();
    void GiveName(NewFile& whole, const PlannedFile& file);

    std::vector<Path> made_;
    std::size_t replaced_ = 0;
    Path mark_;
    bool wasMarked_;
    std::string lastFolder_;  // that is there for certain
};

// Writes a file under a temporary name, which it loses when it is whole. Throws Refused.
void WriteUnderTemporaryName(const Path& file, const std::string& content);

}  // namespace launcher::mediatool
