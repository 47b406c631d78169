#pragma once

#include <windows.h>

#include <cstdint>
#include <string_view>

#include "fs/owners.h"
#include "fs/path.h"

namespace launcher::mediatool {

// A file that is written under a temporary name in its folder. It is gone with this object, unless
// it has got its own name. A failure throws Refused: "BLAMED cannot be WHAT".
class NewFile {
  public:
    NewFile(const Path& path, DWORD attributes, const Path& blamed, const char* what);
    // A text of mediatool's own.
    explicit NewFile(const Path& path) : NewFile(path, FILE_ATTRIBUTE_NORMAL, path, "written") {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    void Add(std::string_view bytes);
    void SetModified(std::uint64_t time);  // in units of 100 ns, as Windows counts

    // The file is whole. Another that has its name is in the way, unless it may be replaced.
    void GiveName(bool mayReplace);

  private:
    FileHandle Open(DWORD attributes) const;

    Path path_;
    Path temporary_;
    Path blamed_;
    const char* what_;
    FileHandle file_;
    bool isWhole_ = false;
};

// Removes a file, read-only or not, or an empty folder. False when it cannot, with the reason in
// GetLastError().
bool Remove(const Path& path);

}  // namespace launcher::mediatool
