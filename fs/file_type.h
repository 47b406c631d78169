#pragma once

#include <cstdint>
#include <optional>
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

// Both: true when `path` names an existing file or folder. False for the empty path and for one
// that cannot be examined. Throw nothing. The second asks the disk; the first is what the launcher
// goes by.
bool PathExists(const std::string& path);
bool IsThere(const std::string& path);

// The type that goes with a file's attributes (FILE_ATTRIBUTE_...).
FileType TypeFromAttributes(std::uint32_t attributes);

// What `path` leads to, as the C runtime's status functions see it, which follow links: nothing
// when that is not there.
std::optional<FileType> TypeBehindLinks(const std::wstring& path);

// What `path` names. Throws ZEPInsException: "GetType - empty path", or "GetType - " + path + the
// system's text when the object is missing or cannot be examined.
FileType GetType(const std::string& path);

}  // namespace launcher
