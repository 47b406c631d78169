#pragma once

#include <cstdint>
#include <string>

#include "fs/owners.h"

namespace launcher {

class LaunchOptions;

// Starts the installer with `commandLine` (UTF-8, the executable first) and returns the launcher's
// exit code: the installer's when `wait` is set, else 0 as soon as it runs.
//
// A user without administrator rights is refused, with a message and the result 1, unless the
// action only reads (`softMgtReadOnly`) or "ZEPAdmInstAllowNotAdminUser" is set. A process that
// cannot be started, and one that ends with a code that is negative as a signed number, are
// reported as failed system calls and end the launcher with exit code 1. Throws what
// IsAdministrator throws.
std::int32_t LaunchInstaller(LaunchOptions& options, const std::string& commandLine);

// One child process and its handles, which are closed with it; the child itself goes on.
class InstallerProcess {
  public:
    explicit InstallerProcess(std::string commandLine);
    InstallerProcess(const InstallerProcess&) = delete;
    InstallerProcess& operator=(const InstallerProcess&) = delete;

    // Starts the process in this one's environment and current folder; it inherits what handles
    // are inheritable. Without `consoleWindow` a console program gets no window. When it returns
    // false, GetLastError() says why.
    // https://learn.microsoft.com/windows/win32/api/processthreadsapi/nf-processthreadsapi-createprocessw
    bool Start(bool consoleWindow);

    // Waits without a time limit and returns the exit code, 0 when it cannot be read.
    std::int32_t WaitForExit();

  private:
    std::string commandLine_;
    ProcessInformation process_;
};

}  // namespace launcher
