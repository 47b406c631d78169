#pragma once

#include <cstdint>
#include <string>

namespace launcher {

// What a path names. A bit set: 1 folder, 2 not a folder, 4 reparse point; no other combination
// occurs.
enum class FileType : std::uint32_t {
    Directory = 1,
    File = 2,
    DirectoryLink = 5,  // a junction or a symbolic link to a folder
    FileLink = 6,
};

// A folder of either kind, followed when it is a link.
constexpr bool IsDirectory(FileType type) {
    return (static_cast<std::uint32_t>(type) & 1) != 0;
}

// The type that goes with a file's attributes (FILE_ATTRIBUTE_...).
FileType TypeFromAttributes(std::uint32_t attributes);

// True when `path` names an existing file or folder. False for the empty path and for one that
// cannot be examined. Throws nothing.
bool PathExists(const std::string& path);

// What `path` names. Throws ZEPInsException: "GetType - empty path", or "GetType - " + path + the
// system's text when the object is missing or cannot be examined.
FileType GetType(const std::string& path);

}  // namespace launcher
