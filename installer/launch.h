#pragma once

#include <cstdint>
#include <string>

namespace launcher {

class LaunchOptions;

// While it is set, the installer is started for every user.
inline constexpr char kAllowNotAdministratorVar[] = "ZEPAdmInstAllowNotAdminUser";

// Starts the installer with `commandLine` (UTF-8, the executable first) and returns the launcher's
// exit code: the installer's when `wait` is set, else 0 as soon as it runs.
//
// A user without administrator rights is refused, with a message and the result 1, unless the
// action only reads (`softMgtReadOnly`) or kAllowNotAdministratorVar is set. A process that cannot
// be started, and one that ends with a code that is negative as a signed number, are reported as
// failed system calls and end the launcher with exit code 1. Throws what IsAdministrator throws.
std::int32_t LaunchInstaller(const LaunchOptions& options, const std::string& commandLine);

}  // namespace launcher
