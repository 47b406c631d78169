#pragma once

#include <string>
#include <vector>

#include "fs/path.h"

namespace launcher::mediatool {

// Writes files and folders, and takes back those that it made, unless all went well and Keep() was
// called. A file that was overwritten stays so. All functions throw Refused.
class Writer {
  public:
    Writer() = default;
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer();

    void MakeFolder(const Path& folder);
    void Write(const Path& file, const std::string& content);
    void Copy(const Path& source, const Path& destination);
    void Keep() { made_.clear(); }

  private:
    std::vector<Path> made_;
};

}  // namespace launcher::mediatool
