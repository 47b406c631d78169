#pragma once

#include <string>

namespace launcher {

// Writes "remove.bat" into `temporaryDir`: a script that waits until the copy is no longer in use
// and removes it and itself. It is for the installer to run at its end. A script that cannot be
// written is not reported.
void WriteRemoveScript(const std::string& temporaryDir);

}  // namespace launcher
