#pragma once

#include <string>

namespace launcher {

// Writes "remove.bat" into `temporaryDir`: a script that deletes what it can of the copy's "inst",
// again and again until that is gone, and then, once, the folder with itself. It is for the
// installer to run last of all. A script that cannot be written is not reported.
void WriteRemoveScript(const std::string& temporaryDir);

}  // namespace launcher
