// The least that a launcher can be: starts the program named by its first argument, waits, and
// hands back its exit code. The end of the process closes and frees everything.

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    int argc = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (argv == nullptr || argc < 2) return 1;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(argv[1], nullptr, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &process))
        return 1;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    return static_cast<int>(code);
}
