#pragma once

#include <string>

namespace launcher {

// True when `path` names an existing file or folder. False for the empty path and for one that
// cannot be examined. Throws nothing.
bool PathExists(const std::string& path);

}  // namespace launcher
