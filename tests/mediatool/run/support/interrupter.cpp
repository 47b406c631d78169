// interrupter PROCESS: sends Ctrl+C to the console of a process. A program of its own, because
// whoever does that has to leave its own console. Exit code: 0, or the system's error.

#include <windows.h>

#include <cwchar>

int wmain(int argc, wchar_t** argv) {
    if (argc != 2) return ERROR_INVALID_PARAMETER;
    FreeConsole();
    if (!AttachConsole(std::wcstoul(argv[1], nullptr, 10))) return static_cast<int>(GetLastError());
    SetConsoleCtrlHandler(nullptr, TRUE);  // not this one
    if (!GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) return static_cast<int>(GetLastError());
    return 0;
}
