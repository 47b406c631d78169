#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

struct PretendedFile {
    std::string source;
    std::uint64_t bytes = 0;
};

// What the copy into the temporary folder would have made, by CopyKey.
struct PretendedCopy {
    std::set<std::string> folders;
    std::map<std::string, PretendedFile> contents;
    std::uint64_t bytes = 0;
    std::optional<std::uint64_t> room;  // bytes free at the target; unknown without it

    bool HasFolder(const Path& folder) const;
};

// The copy of the current rehearsal, which `path` is to be part of.
PretendedCopy& CopyBelow(const Path& path);

// A path in the copy as it is listed here: the one that Windows makes of it, in lower case.
std::string CopyKey(const Path& path);

// The name of the temporary folder, in place of a random one.
inline constexpr char kPretendedUuid[] = "{UUID}";

// The number of characters that a path has in a run, where the name of the temporary folder is
// longer than here.
std::size_t LengthInRun(const std::string& path);

}  // namespace launcher::mediatool
