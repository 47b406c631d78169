#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

// A path in the copy as it is listed here: the one that Windows makes of it, in lower case.
std::string CopyKey(const Path& path);

struct PretendedFile {
    std::string path;  // as the launcher names it
    std::string source;
    std::uint64_t bytes = 0;
};

// What the copy into the temporary folder would have made, by CopyKey.
struct PretendedCopy {
    std::set<std::string> folders;
    std::map<std::string, PretendedFile> contents;
    std::uint64_t bytes = 0;
    std::optional<std::uint64_t> room;  // bytes free at the target; unknown without it

    bool HasFolder(const Path& folder) const { return folders.contains(CopyKey(folder)); }
    bool HasFile(const Path& file) const { return contents.contains(CopyKey(file)); }
};

// The copy of the current rehearsal, which `path` is to be part of.
PretendedCopy& CopyBelow(const Path& path);

// The name of the temporary folder, in place of a random one: as long as any, so that all lengths
// are those of a run, and that of no other folder.
inline constexpr char kPretendedUuid[] = "3C0E9D52-7A41-4B6F-9E58-D1F0A6B27C84";
// What outputs show in its place.
inline constexpr char kUuidShown[] = "{UUID}";

}  // namespace launcher::mediatool
