#include "tests/mediatool/effect_guard.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "tests/support/hook.h"

namespace launcher::test {
namespace {

// Each with "A" or "W" after it as well, where there is such a function.
constexpr auto kEffects = std::to_array<std::string_view>({
    // Files and folders.
    "CopyFile",
    "CopyFileEx",
    "CopyFile2",
    "CreateDirectory",
    "CreateDirectoryEx",
    "CreateFile2",
    "CreateFileA",
    "CreateFileTransacted",
    "CreateHardLink",
    "CreateSymbolicLink",
    "DefineDosDevice",
    "DeleteFile",
    "DeleteVolumeMountPoint",
    "DeviceIoControl",
    "EncryptFile",
    "FlushViewOfFile",
    "GetTempFileName",
    "LockFile",
    "MoveFile",
    "MoveFileEx",
    "MoveFileWithProgress",
    "RemoveDirectory",
    "ReplaceFile",
    "SetEndOfFile",
    "SetFileAttributes",
    "SetFileInformationByHandle",
    "SetFileSecurity",
    "SetFileShortName",
    "SetFileTime",
    "SetFileValidData",
    "SetNamedSecurityInfo",
    "SetVolumeLabel",
    "SetVolumeMountPoint",
    "SHCreateDirectoryEx",
    "SHFileOperation",
    "WriteFile",
    "WriteFileEx",
    "WriteFileGather",
    "WritePrivateProfileSection",
    "WritePrivateProfileString",
    "WriteProfileString",
    // The registry, services, the machine.
    "ChangeServiceConfig",
    "CreateService",
    "DeleteService",
    "ExitWindowsEx",
    "InitiateShutdown",
    "InitiateSystemShutdown",
    "RegCopyTree",
    "RegCreateKey",
    "RegCreateKeyEx",
    "RegDeleteKey",
    "RegDeleteKeyEx",
    "RegDeleteKeyValue",
    "RegDeleteTree",
    "RegDeleteValue",
    "RegLoadKey",
    "RegRenameKey",
    "RegReplaceKey",
    "RegRestoreKey",
    "RegSaveKey",
    "RegSetKeyValue",
    "RegSetValue",
    "RegSetValueEx",
    "ReportEvent",
    "SetComputerName",
    "SetLocalTime",
    "SetSystemTime",
    "StartService",
    "SystemParametersInfo",
    // Processes, threads, and code of other libraries.
    "CoCreateInstance",
    "CoCreateInstanceEx",
    "CoInitialize",
    "CoInitializeEx",
    "CreateProcess",
    "CreateProcessAsUser",
    "CreateProcessWithLogon",
    "CreateProcessWithToken",
    "CreateRemoteThread",
    "CreateThread",
    "ExitProcess",
    "LoadLibrary",
    "LoadModule",
    "OleInitialize",
    "QueueUserWorkItem",
    "ShellExecute",
    "ShellExecuteEx",
    "TerminateProcess",
    "WinExec",
    "WriteProcessMemory",
    // Windows, the console, sounds.
    "Beep",
    "CreateDialogIndirectParam",
    "CreateDialogParam",
    "CreateWindow",
    "CreateWindowEx",
    "DialogBoxIndirectParam",
    "DialogBoxParam",
    "FlashWindow",
    "GetOpenFileName",
    "GetSaveFileName",
    "MessageBeep",
    "MessageBox",
    "MessageBoxEx",
    "MessageBoxIndirect",
    "OutputDebugString",
    "PlaySound",
    "PostMessage",
    "SendInput",
    "SendMessage",
    "SetClipboardData",
    "SetForegroundWindow",
    "SetWindowText",
    "SHBrowseForFolder",
    "ShowWindow",
    "SHCreateItemFromParsingName",
    "TaskDialog",
    "TaskDialogIndirect",
    "WriteConsole",
    // The same through the C runtime, where it is a library of its own.
    "_chmod",
    "_creat",
    "_execl",
    "_execv",
    "_exit",
    "_mkdir",
    "_open",
    "_popen",
    "_putws",
    "_rmdir",
    "_sopen",
    "_sopen_s",
    "_spawnl",
    "_spawnv",
    "_spawnvp",
    "_unlink",
    "_utime64",
    "_wchmod",
    "_wcreat",
    "_wexecv",
    "_wfopen",
    "_wfopen_s",
    "_wmkdir",
    "_wopen",
    "_wpopen",
    "_wremove",
    "_wrename",
    "_wrmdir",
    "_write",
    "_wsopen",
    "_wsopen_s",
    "_wspawnl",
    "_wspawnv",
    "_wspawnvp",
    "_wsystem",
    "_wunlink",
    "_wutime64",
    "exit",
    "fopen",
    "fopen_s",
    "fprintf",
    "fputc",
    "fputs",
    "fputwc",
    "fputws",
    "freopen",
    "fwprintf",
    "fwrite",
    "printf",
    "putc",
    "putchar",
    "puts",
    "putwc",
    "remove",
    "rename",
    "system",
    "tmpfile",
    "tmpnam",
    "unlink",
    "vfprintf",
    "vfwprintf",
    "vprintf",
    "wprintf",
});

EffectGuard* current = nullptr;

[[noreturn]] void End(std::string_view function) {
    current->Lift();  // the message is an effect, too
    std::fprintf(stderr, "an effect while there is to be none: %.*s\n",
                 static_cast<int>(function.size()), function.data());
    std::fflush(stderr);
    std::_Exit(EffectGuard::kEffect);
}

// What stands in the place of an effect: one function for each, so that it knows its name. It does
// not return, so its arguments do not matter.
template <std::size_t kIndex>
[[noreturn]] void Trap() {
    End(kEffects[kIndex]);
}

template <std::size_t... kIndices>
constexpr auto MakeTraps(std::index_sequence<kIndices...>) {
    return std::array{&Trap<kIndices>...};
}
constexpr auto kTraps = MakeTraps(std::make_index_sequence<kEffects.size()>());

// Null for what is no effect.
void* TrapOf(std::string_view function) {
    for (std::size_t i = 0; i < kEffects.size(); ++i) {
        const std::string_view effect = kEffects[i];
        const std::string_view end = function.substr(std::min(effect.size(), function.size()));
        if (function.starts_with(effect) && (end.empty() || end == "A" || end == "W"))
            return reinterpret_cast<void*>(kTraps[i]);
    }
    return nullptr;
}

// The functions that have an effect with some arguments only.

decltype(&CreateFileW) createFile = nullptr;
decltype(&CreateFileMappingW) createFileMapping = nullptr;
decltype(&LoadLibraryExW) loadLibrary = nullptr;
decltype(&GetProcAddress) getProcAddress = nullptr;

HANDLE WINAPI OpenToRead(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                         DWORD disposition, DWORD flags, HANDLE like) {
    constexpr DWORD kReading =
        GENERIC_READ | GENERIC_EXECUTE | FILE_GENERIC_READ | FILE_GENERIC_EXECUTE;
    // A question for the right to make folders in one, which makes none.
    const bool isQuestion =
        access == FILE_ADD_SUBDIRECTORY && (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0;
    const bool writes = (access & ~kReading) != 0 && !isQuestion;
    if (writes || disposition != OPEN_EXISTING || (flags & FILE_FLAG_DELETE_ON_CLOSE) != 0)
        End("CreateFileW");
    return createFile(name, access, share, security, disposition, flags, like);
}

HANDLE WINAPI MapToRead(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protection, DWORD high,
                        DWORD low, LPCWSTR name) {
    if ((protection & ~DWORD{SEC_IMAGE}) != PAGE_READONLY) End("CreateFileMappingW");
    return createFileMapping(file, security, protection, high, low, name);
}

HMODULE WINAPI LoadToRead(LPCWSTR name, HANDLE file, DWORD flags) {
    constexpr DWORD kRunsNothing =
        DONT_RESOLVE_DLL_REFERENCES | LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE;
    if ((flags & kRunsNothing) == 0) End("LoadLibraryExW");
    return loadLibrary(name, file, flags);
}

FARPROC WINAPI LookUp(HMODULE module, LPCSTR name) {
    void* const trap = HIWORD(name) == 0 ? nullptr : TrapOf(name);
    return trap == nullptr ? getProcAddress(module, name) : reinterpret_cast<FARPROC>(trap);
}

template <class Function>
void* Instead(void* original, Function& real, Function replacement) {
    real = reinterpret_cast<Function>(original);
    return reinterpret_cast<void*>(replacement);
}

// What stands in the place of an import; null for one that may stay.
void* ReplacementOf(std::string_view function, void* original) {
    if (function == "CreateFileW") return Instead(original, createFile, &OpenToRead);
    if (function == "CreateFileMappingW") return Instead(original, createFileMapping, &MapToRead);
    if (function == "LoadLibraryExW") return Instead(original, loadLibrary, &LoadToRead);
    if (function == "GetProcAddress") return Instead(original, getProcAddress, &LookUp);
    return TrapOf(function);
}

}  // namespace

EffectGuard::EffectGuard() {
    current = this;
    ForEachImport([this](std::string_view function, void** slot) {
        if (ReplacementOf(function, *slot) != nullptr) originals_.emplace_back(slot, *slot);
    });
    ForEachImport([](std::string_view function, void** slot) {
        if (void* const replacement = ReplacementOf(function, *slot))
            WriteImport(slot, replacement);
    });
}

void EffectGuard::Lift() {
    for (const auto& [slot, original] : originals_)
        WriteImport(slot, original);
    originals_.clear();
}

EffectGuard::~EffectGuard() {
    Lift();
}

}  // namespace launcher::test
