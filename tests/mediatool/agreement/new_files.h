#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace launcher::test {

// The files below some folders: by their paths in lower case, size and time of the last change.
using Snapshot = std::map<std::string, std::pair<std::uint64_t, std::uint64_t>>;
Snapshot TakeSnapshot(const std::vector<std::filesystem::path>& folders);

// A path as a snapshot names it. That of a launcher's temporary folder stands as {uuid}.
std::string SnapshotName(const std::string& path);

// The path that Windows makes of one that may be relative to `folder`.
std::string FullPath(const std::string& path, const std::filesystem::path& folder);

// What is in the second and not, or not so, in the first.
std::vector<std::string> NewFiles(const Snapshot& before, const Snapshot& after);

}  // namespace launcher::test
