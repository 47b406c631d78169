// Starts the program that its command line goes on with, waits for it, and hands back its exit
// code. Its manifest asks for elevation, and what it starts has its rights: newer versions of Wine
// start programs as Windows does for an administrator, without elevation.

#include <windows.h>

#include <cstdio>
#include <cwchar>

namespace {

constexpr int kCannotStart = 127;  // as a shell says it

// What follows the program's own name, which is in quotes when it holds spaces.
wchar_t* RestOf(wchar_t* commandLine) {
    wchar_t* end =
        *commandLine == L'"' ? std::wcschr(commandLine + 1, L'"') : std::wcschr(commandLine, L' ');
    if (end == nullptr) return commandLine + std::wcslen(commandLine);
    if (*end == L'"') ++end;
    return end + std::wcsspn(end, L" ");
}

}  // namespace

int wmain() {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};  // its handles end with this program
    if (!CreateProcessW(nullptr, RestOf(GetCommandLineW()), nullptr, nullptr, TRUE, 0, nullptr,
                        nullptr, &startup, &process)) {
        const DWORD error = GetLastError();
        std::fwprintf(stderr, L"elevated_start: cannot start the program: error %lu\n", error);
        return kCannotStart;
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = kCannotStart;
    GetExitCodeProcess(process.hProcess, &exitCode);
    return static_cast<int>(exitCode);
}
