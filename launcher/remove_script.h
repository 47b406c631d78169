#pragma once

#include <string>

namespace launcher {

// Writes "remove.bat" into `temporaryDir`: a script that deletes what it can of the copy, again
// and again until all is gone, and then itself. It is for the installer to run last of all. A
// script that cannot be written is not reported.
void WriteRemoveScript(const std::string& temporaryDir);

}  // namespace launcher
