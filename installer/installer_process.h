#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace launcher {

// Both handles of a child process, where CreateProcessW writes them.
struct ProcessInformation : PROCESS_INFORMATION {
    ProcessInformation() noexcept
        : PROCESS_INFORMATION{INVALID_HANDLE_VALUE, INVALID_HANDLE_VALUE, 0, 0} {}
    ProcessInformation(const ProcessInformation&) = delete;
    ProcessInformation& operator=(const ProcessInformation&) = delete;
    ~ProcessInformation() {
        if (hProcess != INVALID_HANDLE_VALUE) CloseHandle(hProcess);
        if (hThread != INVALID_HANDLE_VALUE) CloseHandle(hThread);
    }
};

// One child process and its handles. Destruction closes the handles; the child keeps running.
class InstallerProcess {
  public:
    explicit InstallerProcess(std::string commandLine);
    InstallerProcess(const InstallerProcess&) = delete;
    InstallerProcess& operator=(const InstallerProcess&) = delete;

    // Starts the process in this one's environment and current folder; it inherits every
    // inheritable handle. Without `consoleWindow` a console program gets no window. When it returns
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
