#include "installer/installer_process.h"

#include <windows.h>

#include <utility>

#include "fs/encoding.h"

namespace launcher {

InstallerProcess::InstallerProcess(std::string commandLine)
    : commandLine_(std::move(commandLine)) {}

bool InstallerProcess::Start(bool consoleWindow) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.wShowWindow = SW_SHOW;  // ignored without STARTF_USESHOWWINDOW
    bool started = false;
    DWORD error = ERROR_SUCCESS;
    {
        std::wstring buffer = ToWide(commandLine_);  // Windows may write into it
        started = CreateProcessW(nullptr, buffer.data(), nullptr, nullptr, TRUE,
                                 consoleWindow ? 0 : CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                                 &process_) != 0;
        error = GetLastError();
    }
    SetLastError(error);  // what the caller reports, unchanged by the buffer's release
    return started;
}

std::int32_t InstallerProcess::WaitForExit() {
    WaitForSingleObject(process_.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process_.hProcess, &code);
    return static_cast<std::int32_t>(code);
}

}  // namespace launcher
