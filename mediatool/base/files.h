#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fs/path.h"

namespace launcher::mediatool {

// Looks at files and folders, whatever the length of their paths. What looks at a name or lists a
// folder tells of a link itself; what opens a file follows the links to it. Texts are UTF-8.

// Makes a drive without a disc one more failure for this thread. Windows would ask for the disc, in
// a box, and wait. Of the thread alone: programs that are started inherit the mode of the process.
void AskNobodyForDiscs();

struct Entry {
    std::string name;
    bool isFolder;
    bool isLink;
    std::uint64_t size;      // bytes; 0 for a folder
    std::uint64_t modified;  // in units of 100 ns, as Windows counts
    std::uint32_t attributes;
};

// The absolute, normalised path that `text` means. Empty for the empty text.
Path FullPath(const std::string& text);

// Whether it begins at the root of a drive or share, and so means the same from everywhere.
bool IsFull(const Path& path);

// The path that Windows takes at any length: "\\?\" in front.
std::wstring Extended(const std::string& path);

// What `path` names; nothing when it is not there or cannot be looked at, with the reason in
// GetLastError().
std::optional<Entry> Look(const Path& path);
bool IsFile(const Path& path);
bool IsFolder(const Path& path);

// The same, but of what a link leads to, under the link's own name.
std::optional<Entry> LookThrough(const Path& path);

// The entries of a folder, sorted by name; nothing when it cannot be listed to its end, with the
// reason in GetLastError().
std::optional<std::vector<Entry>> List(const Path& folder);
std::vector<Entry> EntriesOf(const Path& folder);  // none when it cannot be listed

// The first `limit` bytes of a file; nothing when it cannot be read.
std::optional<std::string> ReadStart(const Path& path, std::size_t limit);

// Gives the bytes of a file to `take`, piece by piece. Throws Refused, "cannot be WHAT", when it
// cannot be read to its end.
void ReadWhole(const Path& file, const std::function<void(std::string_view)>& take,
               const std::string& what);

// Both leave the reason in GetLastError(). A path here need not be normalised.
bool CanBeRead(const std::string& path);
bool CanBeOverwritten(const std::string& path);

// Which file or folder a path leads to in the end, links followed. Nothing when that is not there,
// or is on a disk that does not tell.
struct FileIdentity {
    std::uint32_t volume;
    std::uint64_t index;
    // NOLINTNEXTLINE(modernize-use-nullptr): takes the 0 of the comparison for a pointer.
    auto operator<=>(const FileIdentity&) const = default;
};
std::optional<FileIdentity> IdentityOf(const std::string& path);

// The path that `path` leads to in the end. Of what is not there, the folders above that are.
Path FinalPath(const Path& path);

// What the system says of an error, or of its last one, as the end of a sentence, without a full
// stop.
std::string ErrorText(std::uint32_t error);
std::string LastErrorText();

// For the system's last error: "PATH cannot be WHAT: the error." The second throws Refused with it.
std::string WhyNot(const Path& path, const std::string& what);
[[noreturn]] void RefuseFor(const Path& path, const std::string& what);

// The number of UTF-16 code units of a text: what Windows counts a path's length in.
std::size_t WideLength(const std::string& text);
// Without "\\?\" in front, in the same units: 260 with the null at the end.
inline constexpr std::size_t kLongestPath = 259;
inline constexpr std::size_t kLongestFolder = 247;  // of a new folder: room for a short file name
// Likewise, of a command line.
inline constexpr std::size_t kLongestCommandLine = 32766;

// Whether this machine lets programs that ask for it, as the launcher does, use longer paths:
// Windows 10 and 11 with "LongPathsEnabled" in their registry.
// https://learn.microsoft.com/windows/win32/fileio/maximum-file-path-limitation
bool AreLongPathsEnabled();

// Without regard to case, as Windows compares names.
bool SameName(const std::string& left, const std::string& right);
bool SameName(const Path& left, const Path& right);
bool IsAmong(const Path& path, const std::vector<Path>& paths);
// Whether `path` is `folder` or lies below it, by their names.
bool IsWithin(const Path& path, const Path& folder);
std::string InLowerCase(const std::string& text);

}  // namespace launcher::mediatool
