#pragma once

#include <string>

namespace launcher {

// Creates a folder and its missing parents. A bare name and a bare drive are silently ignored, and
// a last component "." is not made. Throws ZEPInsException; the paths are the normalised ones:
//   "CreateDir - empty path"
//   "CreateDir - " + path + " is not a directory."
//   "CreateDirectory - " + path + the system's text
// Folders made before a failure stay.
void CreateDir(const std::string& path);

}  // namespace launcher
