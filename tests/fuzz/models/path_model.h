#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace launcher::fuzz {

// Windows paths as words between separators: no index into a text, nothing replaced in place.
struct PathModel {
    std::size_t separatorsInFront = 0;  // none, one or two
    std::vector<std::string> words;     // none of them empty

    std::string Text() const;
    // The index of the root's last character in Text(), or -1.
    std::int64_t RootEnd() const;
};

// What a path is made of, whether its root makes sense or not.
PathModel SplitPath(std::string_view text);
// The empty path when the root makes no sense.
PathModel MakePath(std::string_view text);

PathModel JoinPaths(const PathModel& left, std::string_view right);
PathModel ParentOf(const PathModel& path);
std::string FileNameOf(const PathModel& path);
// For two rooted paths whose drives are followed by a separator, or by nothing.
PathModel RelativeTo(const PathModel& base, const PathModel& target);

}  // namespace launcher::fuzz
