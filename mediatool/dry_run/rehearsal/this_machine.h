#pragma once

#include <optional>
#include <string>

#include "media/volume_text.h"

// The launcher's own questions to the machine, compiled once more from its sources under other
// names (CMakeLists.txt), beside the replacements that bear their real ones.

namespace launcher {

bool ThisMachineIsAdministrator();
bool ThisMachineIs64BitWindows();
bool ThisMachineHasRequiredWebLibrary();
bool ThisMachineIsWindows8OrNewer();
bool ThisMachinePathExists(const std::string& path);
std::string ThisMachineReadMtbDir(const std::string& path);
std::optional<VolumeCount> ThisMachineReadVolumeCount(const std::string& path);

}  // namespace launcher
