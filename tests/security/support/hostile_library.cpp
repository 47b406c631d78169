// A library as an attacker puts it beside a program, under the name of one that the program or
// Windows looks for. As soon as a process loads it, before any of its functions is called, it adds
// a line to the file named by HOSTILE_REPORT: its own path, a tabulator and the program's path.
//
// It uses no library but kernel32, not even the C runtime: it may itself stand in the place of any
// of them.

// Some functions of imm32 are defined here: its header stays out, by its name in Microsoft's and in
// Wine's headers.
#define NOIME
#define NOIMM
#include <windows.h>

namespace {

constexpr DWORD kMaxLength = 4096;

wchar_t reportPath[kMaxLength];
wchar_t line[2 * kMaxLength];

void AppendLine(const wchar_t* text, DWORD length) {
    const HANDLE report = CreateFileW(reportPath, FILE_APPEND_DATA,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(report, text, length * sizeof *text, &written, nullptr);
    CloseHandle(report);
}

void Report(HINSTANCE self) {
    if (GetEnvironmentVariableW(L"HOSTILE_REPORT", reportPath, kMaxLength) == 0) return;
    DWORD length = GetModuleFileNameW(self, line, kMaxLength);
    line[length++] = L'\t';
    length += GetModuleFileNameW(nullptr, line + length, kMaxLength);
    line[length++] = L'\n';
    AppendLine(line, length);
}

}  // namespace

// Newer Wine's edit fields end the program that lacks these of imm32. They say that there is no
// input method.
extern "C" {
__declspec(dllexport) HANDLE WINAPI ImmGetContext(HWND) {
    return nullptr;
}
__declspec(dllexport) BOOL WINAPI ImmReleaseContext(HWND, HANDLE) {
    return FALSE;
}
__declspec(dllexport) BOOL WINAPI ImmSetCompositionFontW(HANDLE, void*) {
    return FALSE;
}
__declspec(dllexport) BOOL WINAPI ImmSetCompositionWindow(HANDLE, void*) {
    return FALSE;
}
__declspec(dllexport) LONG WINAPI ImmGetCompositionStringW(HANDLE, DWORD, void*, DWORD) {
    return 0;
}
__declspec(dllexport) BOOL WINAPI ImmNotifyIME(HANDLE, DWORD, DWORD, DWORD) {
    return FALSE;
}
}

extern "C" BOOL WINAPI DllMain(HINSTANCE self, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) Report(self);
    return TRUE;
}
