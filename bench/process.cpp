#include "bench/process.h"

#include <stdexcept>

#include "installer/installer_process.h"

namespace launcher::bench {

DWORD RunProcess(std::wstring commandLine) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;  // none of them
    ProcessInformation process;
    // Wine on a loaded machine now and then refuses with an internal error what it does next time.
    for (int attempts = 1; !CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0,
                                           nullptr, nullptr, &startup, &process);
         ++attempts) {
        if (GetLastError() != ERROR_INTERNAL_ERROR || attempts == 3)
            throw std::runtime_error("a process cannot be started");
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    return code;
}

}  // namespace launcher::bench
