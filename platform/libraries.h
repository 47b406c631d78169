#pragma once

#include <windows.h>

namespace launcher {

// From here on, this process looks for libraries that are named without a folder in the system's
// folder only: a library of the same name beside the program, on a disc or in a folder of
// downloads, is never loaded. Child processes are not affected. Windows 7 without its update
// KB2533623 lacks the function and keeps the ordinary search.
// https://learn.microsoft.com/windows/win32/api/libloaderapi/nf-libloaderapi-setdefaultdlldirectories
void RestrictDllSearch();

// A function of a library that is loaded already (`module`, "kernel32" for instance), looked up
// because an older system lacks it or the library is not always needed. Null when it is not there.
template <class Function>
Function ModuleFunction(const wchar_t* module, const char* name) {
    // Through void*: compilers warn about a direct cast between function types.
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(module), name)));
}

}  // namespace launcher
